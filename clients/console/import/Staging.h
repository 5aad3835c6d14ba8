#pragma once

#include "console/Database.h"
#include "console/SystemFile.h"

#include <deque>
#include <set>

namespace Console {

/// Locks a folder for the program that works in it, and returns the descriptor that has the lock until it is closed; -1
/// if another program has the lock, or if the folder is gone.
int LockFolder(const std::filesystem::path& folder);

/// A file that was copied for an import and has no final name yet.
struct StagedFile {
    std::filesystem::path path;  ///< inside the staging folder
    std::string sha256;          ///< of its content, 64 hexadecimal digits
};

/// The folder in a storage root where one import keeps files until they have their final names.
///
/// The folder is named ".oxclass-import-..." and is locked while the import runs. A list in it contains the final names
/// that are being written, so that the next import finds what a killed one left behind: `RemoveLeftovers` removes the
/// folder, and the listed files that have no row. It does not change the files of a running import. Used by one thread.
class Staging {
public:
    /// The purpose of a staging folder: an import, or a copy, whose files are removed without looking for their rows.
    enum class For { Import, Copy };

    /// Creates the folder in `root`, which must exist. Throws `UserError` if it can't be created.
    explicit Staging(const std::filesystem::path& root, For purpose = For::Import);

    /// Removes the folder and all files in it, unless `Leave` was called.
    ~Staging();
    Staging(const Staging&) = delete;

    const std::filesystem::path& Folder() const noexcept { return folder_; }

    /// Copies a file into the folder and flushes it to the disk. Throws `UserError`; nothing of the copy is
    /// left then.
    StagedFile Copy(const std::filesystem::path& from);

    /// Copies a file into the folder and has the system begin to write it to the disk, so that the next file is read
    /// meanwhile. The copy is not on the disk before `Flush`. Throws `UserError`; nothing of the copy is left then.
    StagedFile BeginCopy(const std::filesystem::path& from);

    /// Flushes all copies to the disk. Throws `UserError` if that fails for one of them; none may be used then.
    void Flush();

    /// Writes the final names of the files, in their stored form, into the list before the files are renamed.
    void Announce(const std::vector<std::string>& storedNames);

    /// Lets the destructor leave the folder as it is, as a killed import does: the next import finds out by the rows
    /// which of the announced files stay.
    void Leave() noexcept { left_ = true; }

private:
    std::filesystem::path folder_;
    bool left_ = false;
    int lock_ = -1;
    std::deque<SystemFile> unflushed_;  // the newest copies
    std::size_t copies_ = 0;
};

/// Keeps other programs that import from naming and removing files in a storage root, until the object ends.
///
/// A write transaction does so by itself, except between the nodes of a cluster, where a transaction that has named its
/// files can still fail while that of another program has already found them. So this class does nothing unless the
/// engine is MariaDB. It is locked before the transaction begins.
class RootLock {
public:
    /// Waits as long as another program has the lock. Throws `UserError` if the folder can't be locked, and `Stopped`.
    RootLock(const Ref<Connection>& con, const std::filesystem::path& root);
    ~RootLock();
    RootLock(const RootLock&) = delete;

private:
    int lock_ = -1;
};

/// Removes what killed imports left in a root: their staging folders, and those files that were named but
/// whose rows were never committed. Takes the database's write lock only if there are such files. Returns how
/// many files it removed.
std::size_t RemoveLeftovers(const Ref<Connection>& con, const std::filesystem::path& root);

/// Removes the staging folders for copies that killed programs left in a folder.
void RemoveAbandonedCopies(const std::filesystem::path& folder);

/// Returns the number of files that killed imports left in the staging folders of a root. Changes nothing.
std::size_t CountLeftovers(const std::filesystem::path& root);

/// Files that get their final names under a storage root, inside the transaction that writes their rows.
///
/// A file appears under its name only when it is complete, and never replaces another file, also on file systems
/// without hard links. Unless `Keep` is called, the destructor moves the files that this object named back into their
/// staging folder.
class NamedFiles {
public:
    /// What the staged files are. A copy that can't be moved back is removed; an original keeps its final name then.
    enum class Staged { Copies, Originals };

    explicit NamedFiles(std::filesystem::path root, Staged staged = Staged::Copies)
        : root_(std::move(root)), staged_(staged) {}
    ~NamedFiles();
    NamedFiles(const NamedFiles&) = delete;

    /// Moves a staged file to `target`, a path below the root. Creates the folder of `target`, but never the root. If a
    /// file with the same content already has the name, that file is used. Throws `UserError` if a file with another
    /// content has the name, and if the file system reports a failure.
    void Name(const StagedFile& staged, const std::filesystem::path& target);

    /// Flushes the folders that `Name` changed to the disk. Throws `UserError`.
    void Sync();

    void Keep() noexcept { made_.clear(); }

private:
    void MakeFolder(const std::filesystem::path& folder);

    struct Made {
        std::filesystem::path staged, target;
    };

    std::filesystem::path root_;
    Staged staged_;
    std::vector<Made> made_;
    std::set<std::filesystem::path> folders_;
};

/// Returns true if both files have the same content. Throws `UserError` if one can't be read.
bool SameContent(const std::filesystem::path& a, const std::filesystem::path& b);

}  // namespace Console
