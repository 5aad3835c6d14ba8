#include "console/trash/Deletion.h"

#include "console/Server.h"
#include "console/WriteTransaction.h"
#include "console/import/Staging.h"
#include "console/maintenance/ClinicFiles.h"
#include "console/trash/Trash.h"
#include "frame/Statement.h"
#include "platform/runtime/Services.h"

#include <algorithm>
#include <fmt/format.h>
#include <memory>
#include <optional>

namespace Console {
namespace {

namespace fs = std::filesystem;
using namespace OXClass;
using Json = nlohmann::ordered_json;
using Keys = std::set<Long>;

/// The kinds of rows that are removed by name.
struct Kind {
    const char *what, *table, *key, *list;
    Keys RemovedKeys::*keys;
    const char* identity;  ///< a column that tells a row from another one that has its key later
};

constexpr Kind Kinds[] = {
    {"patient", "Patient_T", "PatientID", "patients", &RemovedKeys::patients, "PersonNr_CH"},
    {"study", "Study_T", "Study_ID", "studies", &RemovedKeys::studies, "StudyInstanceUID"},
    {"series", "Series_T", "Series_ID", "series", &RemovedKeys::series, "SeriesInstanceUID"},
    {"image", "ImageBild_T", "ImageBildID", "images", &RemovedKeys::images, "SOPInstanceUID_NVC"},
    {"card", "ImageCard_T", "ImageCardID", "cards PATIENT", &RemovedKeys::cards, "ICName"},
    {"comment", "Comments_T", "CommentID", "comment IMAGE", &RemovedKeys::comments, "commentString"},
};

const Kind& KindOf(const RemovedKeys& named) {
    return *std::ranges::find_if(Kinds, [&](const Kind& kind) { return !(named.*kind.keys).empty(); });
}

void RequireAll(const Ref<Connection>& con, const Kind& kind, const Keys& keys) {
    Keys missing = keys;
    EachList(keys, [&](const std::string& list) {
        const Ref<Recordset> rows = con->Execute(sql("SELECT ", Clause(kind.key), " FROM ", Clause(kind.table),
                                                     " WHERE ", Clause(kind.key), " IN (", Clause(list), ")"));
        for (; !rows->Eof(); rows->MoveNext()) missing.erase(rows->Fields(0).As<Long>());
    });
    if (!missing.empty())
        throw UserError(fmt::format("there is no {} {}; see: oxclass {}", kind.what, *missing.begin(), kind.list));
}

/// Returns the recorded text of a column; empty for a null.
std::string TextIn(const Json& row, const std::string& column) {
    const auto value = row.find(LCase(column));
    if (value == row.end() || value->is_null()) return {};
    return value->is_string() ? value->get<std::string>() : value->dump();
}

MainRow MainRowOf(const Kind& kind, Long number, const Json& rows) {
    MainRow main{kind.table, kind.key, number, {}, {}};
    for (const Json& row : rows.at(kind.table)) {
        if (TextIn(row, kind.key) != CStr(number)) continue;
        const std::string text = TextIn(row, kind.identity);
        if (text.empty()) continue;
        main.column = kind.identity;
        main.text = sql("'", FixSqlString(text), "'");
    }
    return main;
}

/// Returns the files of recorded images and of recorded cosmetic manipulations, whose text begins with three characters
/// for the storage root.
std::vector<TrashFile> FilesOf(const Json& rows) {
    std::vector<TrashFile> files;
    std::set<std::pair<Long, std::string>> known;
    const auto add = [&](Long root, const std::string& name, const std::string& sha256) {
        if (root > 0 && !name.empty() && known.emplace(root, name).second) files.push_back({root, name, sha256});
    };
    for (const Json& row : rows.at("ImageBild_T"))
        add(static_cast<Long>(Val(TextIn(row, "RootId"))), TextIn(row, "GraphicURL_NVC"), TextIn(row, "CRC"));
    constexpr std::size_t rootDigits = 3;
    for (const Json& row : rows.at("ImageManipulation_T")) {
        const std::string text = TextIn(row, "StringParameter");
        if (TextIn(row, "Type") == "1" && text.size() > rootDigits)
            add(static_cast<Long>(Val(text.substr(0, rootDigits))), text.substr(rootDigits), {});
    }
    return files;
}

std::string PatientIn(const Ref<Connection>& con, const Json& rows) {
    Keys owners;
    for (const char* table : {"Patient_T", "ImageBild_T", "ImageCard_T", "Study_T"})
        owners.merge(NumbersIn(rows, table, "patientid"));
    if (owners.empty()) return {};
    const Ref<Recordset> row =
        con->Execute(sql("SELECT PersonNr_CH FROM Patient_T WHERE PatientID = ", *owners.begin()));
    const bool hasID = !row->Eof() && !row->Fields(0).IsNull();
    return PatientCalled(*owners.begin(), hasID ? row->Fields(0).As<String>() : String());
}

/// Returns the number of rows by words; rows that belong to the program alone are not counted.
Json CountsOf(const Json& rows) {
    constexpr std::pair<const char*, const char*> words[] = {
        {"Patient_T", "patients"},
        {"Study_T", "studies"},
        {"Series_T", "series"},
        {"ImageBild_T", "images"},
        {"ImageCard_T", "cards"},
        {"ImageAttribute_T", "placed images"},
        {"ImageManipulation_T", "manipulations"},
        {"Comments_T", "comments"},
    };
    Json counts = Json::object();
    for (const auto& [table, word] : words)
        if (!rows.at(table).empty()) counts[word] = rows.at(table).size();
    return counts;
}

/// Lets each commit reach the disk before it returns, as servers do: the files are moved behind it, and the record of
/// what was restored is deleted.
void SyncEachCommit(const Ref<Connection>& con) {
    if (!IsServer(con)) con->Execute("PRAGMA synchronous = FULL");
}

/// Keeps importers from the files of all storage roots that an entry may use.
class AllRootsLock {
public:
    AllRootsLock(const Ref<Connection>& con, const std::map<Long, fs::path>& folders) {
        for (const auto& [root, folder] : folders)
            if (fs::exists(folder)) locks_.push_back(std::make_unique<RootLock>(con, folder));
    }

private:
    std::vector<std::unique_ptr<RootLock>> locks_;
};

// ---- removing -------------------------------------------------------------------------------------

class Deletion {
public:
    Deletion(const Database& database, const RemovedKeys& named, const ChangeOptions& change)
        : con_(database.Con()),
          named_(named),
          change_(change),
          signature_(SignatureOf(change)),
          roots_(con_),
          folders_(FoldersOfRoots(con_)) {}

    DeletionResult Run() {
        RecoverTrash(con_);
        home_ = roots_.ActiveRoot();
        roots_.Folder(home_);
        SyncEachCommit(con_);
        const AllRootsLock lock(con_, folders_);
        RepeatAfterConflicts(con_, [&] { Try(); });
        if (entry_) MoveFiles();
        return std::move(result_);
    }

private:
    void Try() {
        DropEntry();
        WriteTransaction transaction(con_);
        RemovedKeys keys = named_;
        Collect(keys);
        Describe(keys);
        if (change_.dryRun) return;
        PrepareEntry();
        bool committing = false;
        try {
            const Keys series = NumbersIn(record_.rows, "ImageBild_T", "series_id");
            DeleteRows(con_, keys);
            CountImages(con_, series);
            committing = true;
            transaction.Commit();
        } catch (const std::exception&) {
            const bool unclear = committing && IsServer(con_) && !HasReported(con_, ADODB::LockConflict);
            if (unclear || HasReported(con_, ADODB::ConnectionLost))
                entry_.reset();  // the next command finds out whether the rows are gone
            else
                DropEntry();
            throw;
        }
    }

    void Collect(RemovedKeys& keys) const {
        const Kind& kind = KindOf(named_);
        RequireAll(con_, kind, named_.*kind.keys);
        AddWhatBelongs(con_, keys);
        if (!named_.patients.empty() && !change_.force &&
            keys.studies.size() + keys.images.size() + keys.cards.size() > 0)
            throw UserError(
                fmt::format("the patient has {} studies, {} images and {} cards, and nothing was deleted; "
                            "--force deletes them too",
                            keys.studies.size(), keys.images.size(), keys.cards.size()));
        for (const auto& [card, placed] : CardsThatShow(con_, keys)) {
            if (!change_.force)
                throw UserError(
                    fmt::format("card IC{} shows an image that would be deleted, and nothing was deleted; "
                                "--force takes it off the card",
                                card));
            keys.placed.insert(placed.begin(), placed.end());
        }
    }

    void Describe(const RemovedKeys& keys) {
        const Kind& kind = KindOf(named_);
        const Keys& numbers = named_.*kind.keys;
        record_ = {};
        record_.deleted = DateText(Now());
        record_.by = signature_;
        record_.what = fmt::format("{} {}", kind.what, fmt::join(numbers, ", "));
        record_.rows = RowsOf(con_, keys);
        record_.patient = PatientIn(con_, record_.rows);
        record_.main = MainRowOf(kind, *numbers.begin(), record_.rows);
        for (TrashFile& file : FilesOf(record_.rows)) {
            const auto folder = folders_.find(file.root);
            if (folder == folders_.end()) continue;
            if (fs::exists(StoredPath(roots_.Folder(file.root).string(), file.name)))
                record_.files.push_back(std::move(file));
        }
        result_ = {{}, record_.what, record_.patient, CountsOf(record_.rows), record_.files.size(), {}};
    }

    void PrepareEntry() {
        std::vector<Long> all;
        for (const auto& [root, folder] : folders_)
            if (fs::exists(folder)) all.push_back(root);
        entry_.emplace(TrashEntry::Make(roots_, home_, all));
        result_.entry = entry_->Name();
        try {
            entry_->WritePending(record_);
        } catch (...) {
            DropEntry();
            throw;
        }
    }

    void DropEntry() {
        if (entry_) entry_->Remove(nullptr);
        entry_.reset();
    }

    void MoveFiles() {
        try {
            Write(con_, [&] { entry_->TakeFiles(con_, record_); });
            entry_->SetState(TrashState::Pending, TrashState::Complete);
        } catch (const std::exception& failure) {
            result_.unfinished = failure.what();
        }
    }

    Ref<Connection> con_;
    const RemovedKeys& named_;
    const ChangeOptions& change_;
    std::string signature_;
    StorageRoots roots_;
    std::map<Long, fs::path> folders_;
    Long home_ = 0;
    TrashRecord record_;
    std::optional<TrashEntry> entry_;
    DeletionResult result_;
};

// ---- restoring ------------------------------------------------------------------------------------

/// Returns the entry of this name. Throws `UserError` if there is none.
TrashListing EntryNamed(const Ref<Connection>& con, const std::string& name) {
    for (TrashListing& entry : TrashEntries(con))
        if (EqualsIgnoringCase(entry.name, name) && entry.state == TrashState::Complete) return std::move(entry);
    throw UserError(fmt::format("the trash has no entry {}; see: oxclass trash list", name));
}

TrashEntry Locked(StorageRoots& roots, const TrashListing& listing) {
    if (auto entry = TrashEntry::Open(roots, listing.home, listing.name)) return std::move(*entry);
    throw UserError(fmt::format("another program works on {}; run the command again", listing.name));
}

class Undeletion {
public:
    Undeletion(const Database& database, const std::string& name)
        : con_(database.Con()),
          roots_(con_),
          listing_(EntryNamed(con_, name)),
          entry_(Locked(roots_, listing_)),
          record_(TrashRecord::Read(listing_.record)) {}

    UndeletionResult Run() {
        for (const TrashFile& file : record_.files) roots_.Folder(file.root);
        const AllRootsLock lock(con_, FoldersOfRoots(con_));
        SyncEachCommit(con_);
        entry_.SetState(TrashState::Complete, TrashState::Pending);
        try {
            RepeatAfterConflicts(con_, [&] { Try(); });
        } catch (const std::exception&) {
            if (unclear_) throw;
            entry_.WritePending(record_);
            entry_.SetState(TrashState::Pending, TrashState::Complete);
            throw;
        }
        RemoveEntry();
        return std::move(result_);
    }

private:
    void RemoveEntry() {
        try {
            entry_.Remove(&record_);
        } catch (const UserError& failure) {
            result_.notes.push_back(fmt::format("everything is restored; the next command of the trash removes {} ({})",
                                                entry_.Name(), failure.what()));
        }
    }

    void Try() {
        result_ = {record_.what, 0, 0, {}};
        WriteTransaction transaction(con_);
        std::map<Long, std::unique_ptr<NamedFiles>> names;
        bool committing = false;
        try {
            TrashRecord record = record_;
            NameMain(record, InsertRows(con_, record_.rows, result_.notes));
            CountImages(con_, Existing());
            entry_.WritePending(record);
            NameFiles(names);
            committing = true;
            transaction.Commit();
            for (auto& [root, named] : names) named->Keep();
        } catch (const std::exception&) {
            unclear_ = (committing && IsServer(con_) && !HasReported(con_, ADODB::LockConflict)) ||
                       HasReported(con_, ADODB::ConnectionLost);
            if (unclear_)
                for (auto& [root, named] : names) named->Keep();
            throw;
        }
        for (const auto& [table, rows] : record_.rows.items()) result_.rows += rows.size();
    }

    /// Notes the new keys, and that of the main row, by which the next command finds out whether the rows are restored.
    void NameMain(TrashRecord& record, const std::map<std::string, std::map<Long, Long>>& keys) {
        for (const auto& [table, chosen] : keys)
            for (const auto& [before, now] : chosen)
                if (before != now)
                    result_.notes.push_back(fmt::format(
                        "another row of {} has the key {} by now; the restored row has {}", table, before, now));
        record.main.number = keys.at(record.main.table).at(record.main.number);
        for (const auto& [before, now] : keys.at("Series_T")) series_.insert(now);
    }

    /// Returns the series that have images again.
    Keys Existing() const {
        Keys series = NumbersIn(record_.rows, "ImageBild_T", "series_id");
        series.insert(series_.begin(), series_.end());
        return series;
    }

    void NameFiles(std::map<Long, std::unique_ptr<NamedFiles>>& names) {
        for (std::size_t i = 0; i < record_.files.size(); ++i) {
            const TrashFile& file = record_.files[i];
            const fs::path from = entry_.InTrash(record_, i);
            NoteDamage(file, from);
            if (!fs::exists(from)) continue;
            auto& named = names[file.root];
            if (!named) named = std::make_unique<NamedFiles>(roots_.Folder(file.root), NamedFiles::Staged::Originals);
            named->Name({from, file.sha256}, entry_.InRoot(file));
            ++result_.files;
        }
        for (auto& [root, named] : names) named->Sync();
    }

    /// Tells that a file is not in the trash as it was removed. A file without a checksum was missing before.
    void NoteDamage(const TrashFile& file, const fs::path& inTrash) {
        const bool there = fs::exists(inTrash);
        if (file.sha256.empty() || (there && Sha256OfFile(inTrash) == file.sha256)) return;
        if (!there && fs::exists(entry_.InRoot(file))) return;
        result_.damaged = true;
        result_.notes.push_back(fmt::format("the file {} {}; see: oxclass check", file.name,
                                            there ? "was changed in the trash" : "is missing in the trash"));
    }

    Ref<Connection> con_;
    StorageRoots roots_;
    TrashListing listing_;
    TrashEntry entry_;
    TrashRecord record_;
    Keys series_;
    bool unclear_ = false;
    UndeletionResult result_;
};

}  // namespace

DeletionResult DeleteRecords(const Database& database, const RemovedKeys& named, const ChangeOptions& change) {
    return Deletion(database, named, change).Run();
}

UndeletionResult Undelete(const Database& database, const std::string& entry) {
    RecoverTrash(database.Con());
    return Undeletion(database, entry).Run();
}

void EmptyTrash(const Database& database, const std::vector<std::string>& entries) {
    RecoverTrash(database.Con());
    StorageRoots roots(database.Con());
    for (const std::string& name : entries) {
        const TrashListing listing = EntryNamed(database.Con(), name);
        const TrashEntry entry = Locked(roots, listing);
        const TrashRecord record = TrashRecord::Read(listing.record);
        entry.SetState(TrashState::Complete, TrashState::Emptied);
        entry.Remove(&record);
    }
}

}  // namespace Console
