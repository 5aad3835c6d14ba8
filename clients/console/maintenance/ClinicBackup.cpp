#include "console/maintenance/ClinicBackup.h"

#include "console/NewDatabase.h"
#include "console/WholeFile.h"
#include "console/import/Staging.h"
#include "console/maintenance/ClinicFiles.h"
#include "frame/Statement.h"
#include "frame/StoredName.h"
#include "platform/adodb/Transaction.h"

#include <fmt/format.h>
#include <fstream>

namespace Console {
namespace {

namespace fs = std::filesystem;
using namespace OXClass;
using Json = nlohmann::ordered_json;

constexpr const char *DatabaseName = "clinic.db", *ManifestName = "manifest.json", *FilesName = "files";

void MakeFolder(const fs::path& folder) {
    std::error_code failure;
    fs::create_directories(folder, failure);
    if (failure)
        throw UserError(fmt::format("can't make the folder {}: {}", folder.string(), failure.message()));
}

/// The manifest of a backup; null if there is none. Throws `UserError` for one that can't be read.
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

/// A consistent copy of the whole database, under its name only when it is complete.
void SnapshotDatabase(const Ref<Connection>& con, const fs::path& target) {
    NewDatabase made(target);
    con->Execute(sql("VACUUM INTO '", FixSqlString(made.Made().string()), "'"));
    made.Finish();
}

/// Where the backup keeps a file; throws `UserError` for a stored name that leads out of its root.
fs::path BackupPath(const fs::path& folder, const ClinicFile& file) {
    return StoredPath((folder / FilesName / std::to_string(file.root)).string(), file.name);
}

/// Copies a file so that the target appears whole, with the expected checksum or with any if that is empty.
/// Returns the checksum. Throws `UserError`; an earlier target stays then.
std::string CopyVerified(const fs::path& from, const fs::path& to, const std::string& sha256) {
    MakeFolder(to.parent_path());
    Staging staging(to.parent_path());
    const StagedFile copy = staging.Copy(from);
    if (!sha256.empty() && copy.sha256 != sha256)
        throw UserError(fmt::format("{} was altered, so it isn't copied", from.string()));
    fs::rename(copy.path, to);
    return copy.sha256;
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
        MakeFolder(folder_);
        StorageRoots roots(database_.Con());
        const std::string identity = IdentityOfClinic(roots);
        const Json earlier = ManifestOf(folder_);
        if (earlier.is_object() && earlier["clinic"] != identity)
            throw UserError(
                fmt::format("{} holds the backup of another clinic; use another folder", folder_.string()));
        SnapshotDatabase(database_.Con(), folder_ / DatabaseName);
        CopyFiles(earlier);
        const Json manifest{{"clinic", identity}, {"files", files_}};
        WriteWholeFile(folder_ / ManifestName, manifest.dump(1) + "\n");
        return std::move(result_);
    }

private:
    /// A clinic without an identity gets it with its first marked root.
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
            for (const Json& file : earlier["files"])
                known[file.value("path", "")] = file.value("sha256", "");
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
            std::string sha256 =
                !file.sha256.empty() || earlier == known.end() ? file.sha256 : earlier->second;
            if (sha256.empty() || !HasChecksum(target, sha256)) {
                sha256 = CopyVerified(StoredPath(folders_.at(file.root).string(), file.name), target, sha256);
                ++result_.copied;
            }
            files_.push_back({{"path", path}, {"root", file.root}, {"name", file.name}, {"sha256", sha256}});
        } catch (const std::exception& failure) {
            result_.failures.push_back(fmt::format("image {}: {}", file.image, failure.what()));
        }
    }

    const Database& database_;
    fs::path folder_;
    std::map<Long, fs::path> folders_;
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
        if (fs::exists(file_))
            throw UserError(fmt::format("{} exists already; name another file", file_.string()));
        if (!fs::is_directory(file_.parent_path()))
            throw UserError(
                fmt::format("there is no folder {}; make it first", file_.parent_path().string()));
        NewDatabase made(file_);
        fs::copy_file(folder_ / DatabaseName, made.Made());
        const Ref<Connection> con = New<Connection>();
        con->Open(ConnectionStringOf(made.Made().string()));
        PointToNewRoots(con);
        CopyFiles(manifest);
        con->Close();
        if (result_.failures.empty()) made.Finish();
        return std::move(result_);
    }

private:
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
        CopyVerified(from, to, sha256);
        ++result_.copied;
    }

    fs::path folder_, file_, root_;
    std::map<Long, fs::path> folders_;
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
