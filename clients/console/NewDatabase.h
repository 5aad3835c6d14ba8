#pragma once

#include "console/import/Staging.h"

namespace Console {

/// A database file that is made in a staging folder beside its name and gets the name when it is complete.
/// Whatever fails, nothing of it is left; what a killed program left, the next one removes.
class NewDatabase {
public:
    /// Throws `UserError` if nothing can be made beside the name.
    explicit NewDatabase(std::filesystem::path path)
        : path_(std::move(path)), staging_(FolderOf(path_), Staging::For::Copy) {}

    /// The file under which it is made.
    std::filesystem::path Made() const { return staging_.Folder() / "new.db"; }

    /// Gives it its name. Every connection to it must be closed.
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
