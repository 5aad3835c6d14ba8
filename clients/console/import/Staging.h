#pragma once

#include "console/Database.h"

#include <set>

namespace Console {

/// A file that was copied for an import and has no final name yet.
struct StagedFile {
    std::filesystem::path path;  ///< inside the staging folder
    std::string sha256;          ///< of its content, 64 hexadecimal digits
};

/// The place in a storage root where one import keeps files until they get their names.
///
/// It is a folder of its own, ".oxclass-import-...", locked as long as the import runs. A list in it names
/// the files that are getting their final names. So the next import can tell what a killed one left behind:
/// `RemoveLeftovers` removes the folder, and the listed files that have no row. Nothing of a running import
/// is touched. Used by one thread.
class Staging {
public:
    /// What a staging folder is for: an import, or a copy, of which nothing must be kept or looked up.
    enum class For { Import, Copy };

    /// Makes the folder in `root`, which must exist. Throws `UserError` if it can't be made.
    explicit Staging(const std::filesystem::path& root, For purpose = For::Import);

    /// Removes the folder and what is left in it.
    ~Staging();
    Staging(const Staging&) = delete;

    const std::filesystem::path& Folder() const noexcept { return folder_; }

    /// Copies a file into the folder and flushes it to the disk. Throws `UserError`; nothing of the copy is
    /// left then.
    StagedFile Copy(const std::filesystem::path& from);

    /// Writes down the names, in their stored form, that files are about to get.
    void Announce(const std::vector<std::string>& storedNames);

private:
    std::filesystem::path folder_;
    int lock_ = -1;
    std::size_t copies_ = 0;
};

/// Removes what killed imports left in a root: their staging folders, and those files that were named but
/// whose rows were never committed. Takes the database's write lock only if there are such files. Returns how
/// many files it removed.
std::size_t RemoveLeftovers(const Ref<Connection>& con, const std::filesystem::path& root);

/// Removes the staging folders that killed programs made for copies in a folder.
void RemoveAbandonedCopies(const std::filesystem::path& folder);

/// How many files killed imports left in the staging folders of a root. Changes nothing.
std::size_t CountLeftovers(const std::filesystem::path& root);

/// Files that get their final names under a storage root, inside the transaction that writes their rows.
///
/// Each name is taken whole and never from another file, also on file systems without hard links. Unless
/// `Keep` is called, the destructor removes the files that were named here.
class NamedFiles {
public:
    explicit NamedFiles(std::filesystem::path root) : root_(std::move(root)) {}
    ~NamedFiles();
    NamedFiles(const NamedFiles&) = delete;

    /// Moves a staged file to `target`, a path below the root, whose folder is made; the root itself never
    /// is. Where a file of the same content has the name already, that one is taken. Throws `UserError` when
    /// another file has the name, and when the file system refuses.
    void Name(const StagedFile& staged, const std::filesystem::path& target);

    /// Flushes the folders in which names were made. Throws `UserError`.
    void Sync();

    void Keep() noexcept { made_.clear(); }

private:
    void MakeFolder(const std::filesystem::path& folder);

    std::filesystem::path root_;
    std::vector<std::filesystem::path> made_;
    std::set<std::filesystem::path> folders_;
};

/// Returns true if both files have the same content. Throws `UserError` if one can't be read.
bool SameContent(const std::filesystem::path& a, const std::filesystem::path& b);

}  // namespace Console
