#pragma once

#include "console/Database.h"
#include "console/import/StorageRoot.h"

#include <filesystem>
#include <map>
#include <optional>
#include <vector>

/// The trash of a clinic: what was removed, until it is emptied.
///
/// Each removal is an entry "T1", "T2" ...: a folder of this name in the folder ".oxclass-trash" of a storage root,
/// with a record of the removed rows and the files of the images. Files of other storage roots lie in folders of the
/// same name there. The name of the record is the state of the entry: "record.json" for one that is complete;
/// "pending.json" while rows and files are removed or restored; "emptied.json" while it is deleted. A program locks the
/// folder of an entry as long as it works on it. So the next program finds out what a killed one has left, and by the
/// rows in the database whether it is the state before or the one after.
namespace Console {

/// A file that an entry has.
struct TrashFile {
    Platform::Long root = 0;
    std::string name;    ///< the stored name, "0_\1.2.3.dcm"
    std::string sha256;  ///< as in the row of the image
};

/// A row by which it is found out whether a removal was committed: as long as it is there, it was not.
struct MainRow {
    std::string table, key;
    Platform::Long number = 0;
    std::string column, text;  ///< a further column with its value, as SQL; empty: the key decides
};

/// What is recorded of a removal.
struct TrashRecord {
    std::string deleted, by, what, patient;
    MainRow main;
    std::vector<TrashFile> files;
    nlohmann::ordered_json rows;

    nlohmann::ordered_json AsJson() const;
    /// Throws `UserError` for a record that can't be read; `path` is its name.
    static TrashRecord Read(const std::filesystem::path& path);
};

/// The states of an entry.
enum class TrashState { Complete, Pending, Emptied };

/// The folder of one entry, locked by this program. Used by the thread of its connection.
class TrashEntry {
public:
    /// Makes the folder of a new entry in this root. Throws `UserError`.
    static TrashEntry Make(StorageRoots& roots, Platform::Long home, const std::vector<Platform::Long>& allRoots);

    /// Opens an entry; null if another program works on it.
    static std::optional<TrashEntry> Open(StorageRoots& roots, Platform::Long home, const std::string& name);

    ~TrashEntry();
    TrashEntry(TrashEntry&& other) noexcept;
    TrashEntry& operator=(TrashEntry&&) = delete;

    const std::string& Name() const noexcept { return name_; }
    Platform::Long Home() const noexcept { return home_; }

    /// Returns the record and sets `state`; null for a folder without a record.
    std::optional<TrashRecord> Record(TrashState& state) const;

    /// Writes the record of an entry that is pending, to the disk.
    void WritePending(const TrashRecord& record) const;

    /// Renames the record to the name of another state, on the disk.
    void SetState(TrashState from, TrashState to) const;

    /// Returns the path of a file of the record in the trash, and that in the storage root.
    std::filesystem::path InTrash(const TrashRecord& record, std::size_t file) const;
    std::filesystem::path InRoot(const TrashFile& file) const;

    /// Moves the files that are still in their roots into the entry; copies those that an image names again. The caller
    /// holds the lock of writers. May be called again.
    void TakeFiles(const Ref<Connection>& con, const TrashRecord& record) const;

    /// Moves files of the entry back that are missing in their roots.
    void GiveFilesBack(const TrashRecord& record) const;

    /// Removes files that a killed program has written only in part.
    void RemoveParts() const;

    /// Removes the entry and its files.
    void Remove(const TrashRecord* record) const;

private:
    TrashEntry(StorageRoots& roots, Platform::Long home, std::string name, int lock);
    std::filesystem::path Folder(Platform::Long root) const;

    StorageRoots& roots_;
    Platform::Long home_;
    std::string name_;
    int lock_;
};

/// An entry as a list shows it.
struct TrashListing {
    std::string name;
    Platform::Long home = 0;
    std::filesystem::path record;
    TrashState state = TrashState::Complete;
};

/// Returns all entries with a record, by number. Changes nothing.
std::vector<TrashListing> TrashEntries(const Ref<Connection>& con);

/// Completes or undoes what killed programs have left; skips an entry whose storage root can't be used, or whose record
/// can't be read. Returns the number of entries.
std::size_t RecoverTrash(const Ref<Connection>& con);

/// The folder of the trash in a storage root.
constexpr const char* TrashFolder = ".oxclass-trash";

}  // namespace Console
