#include "console/trash/Trash.h"

#include "console/SystemFile.h"
#include "console/WholeFile.h"
#include "console/WriteTransaction.h"
#include "console/import/Staging.h"
#include "console/maintenance/ClinicFiles.h"
#include "frame/Statement.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <fmt/format.h>
#include <fstream>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace Console {
namespace {

namespace fs = std::filesystem;
using namespace OXClass;
using Json = nlohmann::ordered_json;

constexpr std::pair<TrashState, const char*> RecordNames[] = {{TrashState::Complete, "record.json"},
                                                              {TrashState::Pending, "pending.json"},
                                                              {TrashState::Emptied, "emptied.json"}};

const char* RecordName(TrashState state) {
    return std::ranges::find(RecordNames, state, &std::pair<TrashState, const char*>::first)->second;
}

/// Returns the number of "T12"; 0 for any other name.
Long NumberOfEntry(const std::string& name) {
    if (name.size() < 2 || name.size() > 9 || name.front() != 'T') return 0;
    if (name.find_first_not_of("0123456789", 1) != std::string::npos) return 0;
    return static_cast<Long>(std::stol(name.substr(1)));
}

void MakeOneFolder(const fs::path& folder) {
    if (mkdir(folder.c_str(), 0755) == 0)
        SyncFolder(folder.parent_path());
    else if (errno != EEXIST)
        ThrowSystemError("can't make the folder", folder);
}

void RenameFile(const fs::path& from, const fs::path& to) {
    if (rename(from.c_str(), to.c_str()) != 0) ThrowSystemError("can't move", from);
}

/// Returns the files that rows name, of those that the record has.
std::set<std::string> FilesInUse(const Ref<Connection>& con, const TrashRecord& record) {
    std::set<std::string> used;
    for (const TrashFile& file : record.files) {
        const fs::path path = Replace(file.name, "\\", "/");
        const Ref<Recordset> rows = con->Execute(sql("SELECT ImageBildID FROM ImageBild_T WHERE SOPInstanceUID_NVC = '",
                                                     FixSqlString(path.stem().string()), "' AND RootId = ", file.root,
                                                     " AND GraphicURL_NVC = '", FixSqlString(file.name), "'"));
        if (!rows->Eof()) used.insert(fmt::format("{}:{}", file.root, file.name));
    }
    return used;
}

void CopyInto(const fs::path& from, const fs::path& to) {
    const fs::path part = to.string() + ".part";
    std::error_code failure;
    fs::copy_file(from, part, fs::copy_options::overwrite_existing, failure);
    if (failure) throw UserError(fmt::format("can't copy {}: {}", from.string(), failure.message()));
    SystemFile(part, O_RDONLY).Flush();
    RenameFile(part, to);
}

bool IsThere(const fs::path& file) {
    std::error_code failure;
    return fs::exists(file, failure);
}

bool HasMainRow(const Ref<Connection>& con, const MainRow& main) {
    const std::string also = main.column.empty() ? std::string() : fmt::format(" AND {} = {}", main.column, main.text);
    return !con->Execute(
                   fmt::format("SELECT {} FROM {} WHERE {} = {}{}", main.key, main.table, main.key, main.number, also))
                ->Eof();
}

/// Ends what a killed program has begun with an entry.
void Recover(const Ref<Connection>& con, const TrashEntry& entry, const fs::path& home) {
    const RootLock lock(con, home);
    Write(con, [&] {
        TrashState state = TrashState::Complete;
        const auto record = entry.Record(state);
        if (!record) return entry.Remove(nullptr);
        if (state == TrashState::Emptied) return entry.Remove(&*record);
        if (state == TrashState::Complete) return;
        if (HasMainRow(con, record->main)) {
            entry.GiveFilesBack(*record);
            return entry.Remove(&*record);
        }
        entry.TakeFiles(con, *record);
        entry.RemoveParts();
        entry.SetState(TrashState::Pending, TrashState::Complete);
    });
}

bool HasRecord(const fs::path& folder) {
    return std::ranges::any_of(RecordNames, [&](const auto& known) { return IsThere(folder / known.second); });
}

/// Returns true for the folder of an entry that is neither complete nor the place of files of an entry of another root.
/// A folder with files and without a record is left alone.
bool NeedsRecovery(const fs::path& folder) {
    if (HasRecord(folder)) return !IsThere(folder / RecordName(TrashState::Complete));
    std::error_code failure;
    for (const auto& file : fs::directory_iterator(folder, failure))
        if (file.path().filename().string().find_first_not_of("0123456789") == std::string::npos) return false;
    return !failure;
}

}  // namespace

// ---- records --------------------------------------------------------------------------------------

Json TrashRecord::AsJson() const {
    Json json{{"deleted", deleted}, {"by", by}, {"what", what}, {"patient", patient}};
    json["main"] = {{"table", main.table},
                    {"key", main.key},
                    {"number", main.number},
                    {"column", main.column},
                    {"text", main.text}};
    json["files"] = Json::array();
    for (const TrashFile& file : files)
        json["files"].push_back({{"root", file.root}, {"name", file.name}, {"sha256", file.sha256}});
    json["rows"] = rows;
    return json;
}

TrashRecord TrashRecord::Read(const fs::path& path) {
    try {
        std::ifstream in(path);
        const Json json = Json::parse(in);
        const Json& main = json.at("main");
        TrashRecord record{json.at("deleted"),
                           json.at("by"),
                           json.at("what"),
                           json.at("patient"),
                           {main.at("table"), main.at("key"), main.at("number"), main.at("column"), main.at("text")},
                           {},
                           json.at("rows")};
        for (const Json& file : json.at("files"))
            record.files.push_back({file.at("root"), file.at("name"), file.at("sha256")});
        return record;
    } catch (const Json::exception&) {
        throw UserError(fmt::format("{} is damaged; move its folder away", path.string()));
    }
}

// ---- entries --------------------------------------------------------------------------------------

TrashEntry::TrashEntry(StorageRoots& roots, Long home, std::string name, int lock)
    : roots_(roots), home_(home), name_(std::move(name)), lock_(lock) {}

TrashEntry::TrashEntry(TrashEntry&& other) noexcept
    : roots_(other.roots_), home_(other.home_), name_(std::move(other.name_)), lock_(std::exchange(other.lock_, -1)) {}

TrashEntry::~TrashEntry() {
    if (lock_ >= 0) close(lock_);
}

TrashEntry TrashEntry::Make(StorageRoots& roots, Long home, const std::vector<Long>& allRoots) {
    Long last = 0;
    for (const Long root : allRoots) {
        std::error_code failure;
        for (const auto& entry : fs::directory_iterator(roots.Folder(root) / TrashFolder, failure))
            last = std::max(last, NumberOfEntry(entry.path().filename().string()));
    }
    MakeOneFolder(roots.Folder(home) / TrashFolder);
    constexpr int tries = 100;
    for (int i = 1; i <= tries; ++i) {
        const std::string name = fmt::format("T{}", last + i);
        const fs::path folder = roots.Folder(home) / TrashFolder / name;
        if (mkdir(folder.c_str(), 0755) != 0) {
            if (errno == EEXIST) continue;
            ThrowSystemError("can't make the folder", folder);
        }
        const int lock = LockFolder(folder);
        if (lock >= 0) return {roots, home, name, lock};
    }
    throw UserError(fmt::format("can't make an entry in {}", (roots.Folder(home) / TrashFolder).string()));
}

std::optional<TrashEntry> TrashEntry::Open(StorageRoots& roots, Long home, const std::string& name) {
    const int lock = LockFolder(roots.Folder(home) / TrashFolder / name);
    if (lock < 0) return std::nullopt;
    return TrashEntry(roots, home, name, lock);
}

fs::path TrashEntry::Folder(Long root) const { return roots_.Folder(root) / TrashFolder / name_; }

std::optional<TrashRecord> TrashEntry::Record(TrashState& state) const {
    for (const auto& [known, name] : RecordNames) {
        const fs::path path = Folder(home_) / name;
        if (!IsThere(path)) continue;
        state = known;
        return TrashRecord::Read(path);
    }
    return std::nullopt;
}

void TrashEntry::WritePending(const TrashRecord& record) const {
    std::string text;
    try {
        text = record.AsJson().dump(1) + "\n";
    } catch (const Json::exception&) {
        throw UserError("a text of the removed rows is not valid UTF-8, and nothing was removed; correct it first");
    }
    WriteWholeFile(Folder(home_) / RecordName(TrashState::Pending), text);
    SyncFolder(Folder(home_));
}

void TrashEntry::SetState(TrashState from, TrashState to) const {
    RenameFile(Folder(home_) / RecordName(from), Folder(home_) / RecordName(to));
    SyncFolder(Folder(home_));
}

fs::path TrashEntry::InTrash(const TrashRecord& record, std::size_t file) const {
    return Folder(record.files[file].root) / std::to_string(file + 1);
}

fs::path TrashEntry::InRoot(const TrashFile& file) const {
    return StoredPath(roots_.Folder(file.root).string(), file.name);
}

void TrashEntry::TakeFiles(const Ref<Connection>& con, const TrashRecord& record) const {
    const std::set<std::string> used = FilesInUse(con, record);
    std::set<fs::path> changed;
    for (std::size_t i = 0; i < record.files.size(); ++i) {
        const TrashFile& file = record.files[i];
        const fs::path from = InRoot(file), to = InTrash(record, i);
        if (IsThere(to) || !IsThere(from)) continue;
        MakeOneFolder(to.parent_path().parent_path());
        MakeOneFolder(to.parent_path());
        if (used.contains(fmt::format("{}:{}", file.root, file.name)))
            CopyInto(from, to);
        else
            RenameFile(from, to);
        changed.insert({from.parent_path(), to.parent_path()});
    }
    for (const fs::path& folder : changed) SyncFolder(folder);
}

void TrashEntry::GiveFilesBack(const TrashRecord& record) const {
    for (std::size_t i = 0; i < record.files.size(); ++i) {
        const fs::path to = InRoot(record.files[i]), from = InTrash(record, i);
        if (!IsThere(from) || IsThere(to)) continue;
        NamedFiles names(roots_.Folder(record.files[i].root), NamedFiles::Staged::Originals);
        names.Name({from, record.files[i].sha256}, to);
        names.Sync();
        names.Keep();
    }
}

void TrashEntry::RemoveParts() const {
    std::error_code failure;
    const std::string pending = RecordName(TrashState::Pending);
    for (const auto& file : fs::directory_iterator(Folder(home_), failure)) {
        const std::string name = file.path().filename().string();
        if (name.starts_with(pending + ".") || name.ends_with(".part")) fs::remove(file.path(), failure);
    }
}

void TrashEntry::Remove(const TrashRecord* record) const {
    std::error_code failure;
    std::set<Long> roots;
    if (record)
        for (const TrashFile& file : record->files) roots.insert(file.root);
    roots.erase(home_);
    for (const Long root : roots) fs::remove_all(Folder(root), failure);
    if (record)
        for (std::size_t i = 0; i < record->files.size() && !failure; ++i)
            if (record->files[i].root == home_) fs::remove(InTrash(*record, i), failure);
    if (!failure) fs::remove_all(Folder(home_), failure);
    if (failure) throw UserError(fmt::format("can't remove {}: {}", Folder(home_).string(), failure.message()));
    SyncFolder(Folder(home_).parent_path());
}

// ---- all entries ----------------------------------------------------------------------------------

std::vector<TrashListing> TrashEntries(const Ref<Connection>& con) {
    std::vector<TrashListing> entries;
    for (const auto& [root, folder] : FoldersOfRoots(con)) {
        std::error_code failure;
        for (const auto& entry : fs::directory_iterator(folder / TrashFolder, failure))
            for (const auto& [state, name] : RecordNames)
                if (NumberOfEntry(entry.path().filename().string()) > 0 && IsThere(entry.path() / name)) {
                    entries.push_back({entry.path().filename().string(), root, entry.path() / name, state});
                    break;
                }
    }
    std::ranges::stable_sort(entries, {}, [](const TrashListing& entry) { return NumberOfEntry(entry.name); });
    return entries;
}

std::size_t RecoverTrash(const Ref<Connection>& con) {
    StorageRoots roots(con);
    std::size_t recovered = 0;
    for (const auto& [root, folder] : FoldersOfRoots(con)) {
        std::error_code failure;
        for (const auto& found : fs::directory_iterator(folder / TrashFolder, failure)) {
            const std::string name = found.path().filename().string();
            if (NumberOfEntry(name) == 0 || !NeedsRecovery(found.path())) continue;
            try {
                const auto entry = TrashEntry::Open(roots, root, name);
                if (!entry) continue;
                Recover(con, *entry, folder);
                ++recovered;
            } catch (const UserError&) {
                // a root that can't be used now, or a damaged record: the entry stays as it is
            }
        }
    }
    return recovered;
}

}  // namespace Console
