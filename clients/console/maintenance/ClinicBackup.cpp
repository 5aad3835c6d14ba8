#include "console/maintenance/ClinicBackup.h"

#include "console/DatabaseName.h"
#include "console/NewDatabase.h"
#include "console/Server.h"
#include "console/WholeFile.h"
#include "console/import/Staging.h"
#include "console/maintenance/ClinicCopy.h"
#include "console/maintenance/ClinicFiles.h"
#include "frame/Statement.h"
#include "frame/StoredName.h"
#include "platform/adodb/Transaction.h"

#include <fmt/format.h>
#include <fstream>
#include <memory>
#include <optional>
#include <set>

namespace Console {
namespace {

namespace fs = std::filesystem;
using namespace OXClass;
using Json = nlohmann::ordered_json;

constexpr const char *DatabaseName = "clinic.db", *ManifestName = "manifest.json", *FilesName = "files";

void MakeFolder(const fs::path& folder) {
    std::error_code failure;
    fs::create_directories(folder, failure);
    if (failure) throw UserError(fmt::format("can't make the folder {}: {}", folder.string(), failure.message()));
}

/// Returns the manifest of a backup; null if there is none. Throws `UserError` for one that can't be read.
Json ManifestOf(const fs::path& folder) {
    std::ifstream in(folder / ManifestName);
    if (!in) return nullptr;
    Json manifest = Json::parse(in, nullptr, false);
    if (!manifest.is_object() || !manifest.contains("clinic") || !manifest.contains("files"))
        throw UserError(fmt::format("{} is damaged; use another folder", (folder / ManifestName).string()));
    return manifest;
}

Ref<Connection> OpenForReading(const fs::path& file) {
    Ref<Connection> con = New<Connection>();
    con->Open(ConnectionStringOf(file.string(), "Read"));
    return con;
}

/// A consistent copy of the whole database, under its name only when it is complete; a file, also of a database on a
/// server.
void SnapshotDatabase(const Database& database, const fs::path& target) {
    if (IsServer(database.Con())) {
        CopyClinicToNewFile(database, target);
        return;
    }
    NewDatabase made(target);
    database.Con()->Execute(sql("VACUUM INTO '", FixSqlString(made.Made().string()), "'"));
    made.Finish();
}

/// Returns the path of a file in the backup. Throws `UserError` for a stored name that leads out of its root.
fs::path BackupPath(const fs::path& folder, const ClinicFile& file) {
    return StoredPath((folder / FilesName / std::to_string(file.root)).string(), file.name);
}

/// Copies a file so that the target appears whole, with the expected checksum or with any if that is empty.
/// Returns the checksum. Throws `UserError`; an earlier target stays then.
std::string CopyVerified(const fs::path& from, const fs::path& to, const std::string& sha256, Staging& staging) {
    MakeFolder(to.parent_path());
    const StagedFile copy = staging.Copy(from);
    if (!sha256.empty() && copy.sha256 != sha256)
        throw UserError(fmt::format("{} was altered, so it isn't copied", from.string()));
    fs::rename(copy.path, to);
    return copy.sha256;
}

/// Returns true if the path is the folder or is in it, after links were resolved.
bool Contains(const fs::path& folder, const fs::path& path) {
    std::error_code failure;
    const fs::path outer = fs::weakly_canonical(folder, failure), inner = fs::weakly_canonical(path, failure);
    return std::mismatch(outer.begin(), outer.end(), inner.begin(), inner.end()).first == outer.end();
}

bool HasChecksum(const fs::path& file, const std::string& sha256) {
    std::error_code failure;
    return fs::is_regular_file(file, failure) && Sha256OfFile(file) == sha256;
}

/// One backup of one clinic.
class Backup {
public:
    Backup(const Database& database, fs::path folder) : database_(database), folder_(std::move(folder)) {}

    BackupResult Run() {
        RequireOutsideOfRoots();
        MakeFolder(folder_);
        RemoveAbandonedCopies(folder_);
        staging_.emplace(folder_, Staging::For::Copy);
        StorageRoots roots(database_.Con());
        const std::string identity = IdentityOfClinic(roots);
        const Json earlier = ManifestOf(folder_);
        if (earlier.is_object() && earlier["clinic"] != identity)
            throw UserError(fmt::format("{} holds the backup of another clinic; use another folder", folder_.string()));
        SnapshotDatabase(database_, folder_ / DatabaseName);
        CopyFiles(earlier);
        const Json manifest{{"clinic", identity}, {"files", files_}};
        WriteWholeFile(folder_ / ManifestName, manifest.dump(1) + "\n");
        return std::move(result_);
    }

private:
    /// Rejects a folder that is in a storage root or contains one: the backup would count as image files, and would be
    /// lost together with them.
    void RequireOutsideOfRoots() const {
        for (const auto& [number, root] : FoldersOfRoots(database_.Con()))
            if (!root.empty() && (Contains(root, folder_) || Contains(folder_, root)))
                throw UserError(fmt::format("{} {} the storage root {}; name a folder elsewhere, best on another disk",
                                            folder_.string(), Contains(root, folder_) ? "is in" : "contains",
                                            root.string()));
    }

    /// Returns the identity of the clinic. A clinic without one receives it with its first marked root.
    static std::string IdentityOfClinic(StorageRoots& roots) {
        if (roots.StoredIdentity().empty()) roots.Folder(roots.ActiveRoot());
        return roots.StoredIdentity();
    }

    void CopyFiles(const Json& earlier) {
        const Ref<Connection> snapshot = OpenForReading(folder_ / DatabaseName);
        folders_ = FoldersOfRoots(snapshot);
        const std::vector<ClinicFile> files = FilesOfClinic(snapshot);
        std::map<std::string, std::string> known;
        if (earlier.is_object())
            for (const Json& file : earlier["files"]) known[file.value("path", "")] = file.value("sha256", "");
        Progress progress("files backed up", files.size());
        for (const ClinicFile& file : files) {
            CopyFile(file, known);
            progress.Step();
        }
    }

    void CopyFile(const ClinicFile& file, const std::map<std::string, std::string>& known) {
        ++result_.files;
        try {
            const fs::path target = BackupPath(folder_, file);
            const std::string path = fs::relative(target, folder_).string();
            const auto earlier = known.find(path);
            std::string sha256 = !file.sha256.empty() || earlier == known.end() ? file.sha256 : earlier->second;
            if (sha256.empty() || !HasChecksum(target, sha256)) {
                sha256 = CopyVerified(StoredPath(RootOf(file).string(), file.name), target, sha256, *staging_);
                ++result_.copied;
            }
            files_.push_back({{"path", path}, {"root", file.root}, {"name", file.name}, {"sha256", sha256}});
        } catch (const std::exception& failure) {
            result_.failures.push_back(fmt::format("image {}: {}", file.image, failure.what()));
        }
    }

    const fs::path& RootOf(const ClinicFile& file) const {
        const auto root = folders_.find(file.root);
        if (root == folders_.end() || root->second.empty())
            throw UserError(fmt::format("its storage root {} isn't in the database", file.root));
        return root->second;
    }

    const Database& database_;
    fs::path folder_;
    std::map<Long, fs::path> folders_;
    std::optional<Staging> staging_;
    Json files_ = Json::array();
    BackupResult result_;
};

/// One restore of one backup.
class RestoreRun {
public:
    RestoreRun(fs::path folder, fs::path file, fs::path root)
        : folder_(std::move(folder)), file_(std::move(file)), root_(std::move(root)) {}

    BackupResult Run() {
        const Json manifest = ManifestOf(folder_);
        if (!manifest.is_object() || !fs::exists(folder_ / DatabaseName))
            throw UserError(fmt::format("{} holds no backup", folder_.string()));
        if (fs::exists(file_)) throw UserError(fmt::format("{} exists already; name another file", file_.string()));
        if (!fs::is_directory(file_.parent_path()))
            throw UserError(fmt::format("there is no folder {}; make it first", file_.parent_path().string()));
        RequireSoundDatabase();
        RequireFilesOfAllImages(manifest);
        NewDatabase made(file_);
        fs::copy_file(folder_ / DatabaseName, made.Made());
        const Ref<Connection> con = New<Connection>();
        con->Open(ConnectionStringOf(made.Made().string()));
        PointToNewRoots(con);
        for (const auto& [number, root] : folders_) {
            RemoveAbandonedCopies(root);
            stagings_[number] = std::make_unique<Staging>(root, Staging::For::Copy);
        }
        CopyFiles(manifest);
        con->Close();
        result_.made = damaged_ == 0;
        if (result_.made) made.Finish();
        return std::move(result_);
    }

private:
    void RequireSoundDatabase() const {
        std::string damage;
        try {
            const String found =
                OpenForReading(folder_ / DatabaseName)->Execute("PRAGMA quick_check(1)")->Fields(0).As<String>();
            if (found != "ok") damage = found;
        } catch (const Error& failure) {
            damage = failure.Description;
        }
        if (!damage.empty())
            throw UserError(fmt::format("the database of the backup is damaged, {} ({}); use an older backup",
                                        (folder_ / DatabaseName).string(), damage));
    }

    /// Reports the images whose file is missing in the backup, because it could not be copied when the backup was made.
    void RequireFilesOfAllImages(const Json& manifest) {
        std::set<std::pair<Long, std::string>> held;
        for (const Json& file : manifest["files"]) held.emplace(file.value("root", 0), file.value("name", ""));
        for (const ClinicFile& file : FilesOfClinic(OpenForReading(folder_ / DatabaseName)))
            if (!held.contains({file.root, file.name}))
                result_.failures.push_back(
                    fmt::format("image {}: the backup lacks its file {}", file.image, file.name));
    }

    void PointToNewRoots(const Ref<Connection>& con) {
        StorageRoots roots(con);
        const auto old = FoldersOfRoots(con);
        ADODB::Transaction transaction(con);
        for (const auto& [number, directory] : old) {
            folders_[number] = old.size() == 1 ? root_ : root_ / std::to_string(number);
            con->Execute(sql("UPDATE Root_T SET RootDirectory = '", FixSqlString(folders_[number].string()),
                             "' WHERE RootID = ", number));
            roots.Create(folders_[number]);
        }
        transaction.Commit();
    }

    void CopyFiles(const Json& manifest) {
        Progress progress("files restored", manifest["files"].size());
        for (const Json& file : manifest["files"]) {
            ++result_.files;
            try {
                CopyFile(file);
            } catch (const std::exception& failure) {
                result_.failures.emplace_back(failure.what());
                ++damaged_;
            }
            progress.Step();
        }
    }

    void CopyFile(const Json& file) {
        const fs::path from = StoredPath(folder_.string(), file.at("path").get<std::string>());
        const std::string sha256 = file.at("sha256").get<std::string>();
        const fs::path to =
            StoredPath(folders_.at(file.at("root").get<Long>()).string(), file.at("name").get<std::string>());
        if (HasChecksum(to, sha256)) return;
        if (fs::exists(to)) throw UserError(fmt::format("another file is stored as {} already", to.string()));
        CopyVerified(from, to, sha256, *stagings_.at(file.at("root").get<Long>()));
        ++result_.copied;
    }

    std::size_t damaged_ = 0;  // files of the backup that could not be restored
    fs::path folder_, file_, root_;
    std::map<Long, fs::path> folders_;
    std::map<Long, std::unique_ptr<Staging>> stagings_;
    BackupResult result_;
};

}  // namespace

BackupResult BackUp(const Database& database, const fs::path& folder) {
    return Backup(database, fs::absolute(folder)).Run();
}

BackupResult Restore(const fs::path& folder, const fs::path& file, const fs::path& root) {
    return RestoreRun(fs::absolute(folder), fs::absolute(file), fs::absolute(root)).Run();
}

}  // namespace Console
