#pragma once

#include "console/import/Staging.h"

namespace Console {

/// A new database file. It is created in a staging folder beside its name and is renamed when it is complete. After a
/// failure nothing of it remains; the next run removes the files of a killed program.
class NewDatabase {
public:
    /// Throws `UserError` if the staging folder can't be created.
    explicit NewDatabase(std::filesystem::path path)
        : path_(std::move(path)), staging_(FolderOf(path_), Staging::For::Copy) {}

    /// Returns the path of the file in the staging folder.
    std::filesystem::path Made() const { return staging_.Folder() / "new.db"; }

    /// Renames the file to its name. Every connection to it must be closed.
    void Finish() { std::filesystem::rename(Made(), path_); }

private:
    static std::filesystem::path FolderOf(const std::filesystem::path& file) {
        RemoveAbandonedCopies(file.parent_path());
        return file.parent_path();
    }

    std::filesystem::path path_;
    Staging staging_;
};

}  // namespace Console
