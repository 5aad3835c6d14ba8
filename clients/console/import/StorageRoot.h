#pragma once

#include "console/Database.h"

namespace Console {

/// The storage roots of a clinic, each checked before it is used.
///
/// A root is a folder with a marker file, ".oxclass-root", that contains the identity of the database's clinic. So the
/// program detects a folder whose disk isn't mounted, or that belongs to another clinic, before it writes a file to it.
/// Only `Create` creates a folder. Used by the thread of its connection.
class StorageRoots {
public:
    explicit StorageRoots(Ref<Connection> con) : con_(std::move(con)) {}

    /// Returns the folder of a root. Writes the marker of this clinic into a folder of an older database without one,
    /// if the folder contains an image file of the database, or if the database has no image file in it. Throws
    /// `UserError` for an unknown root, a missing folder, a folder without the image files of its rows, and a folder of
    /// another clinic.
    const std::filesystem::path& Folder(Platform::Long root);

    /// Checks a root as `Folder` does, and writes nothing.
    void Inspect(Platform::Long root) const;

    /// Returns the number of the root that takes new files. Throws `UserError` if there is none.
    Platform::Long ActiveRoot() const;

    /// Creates the folder if it is missing, and marks it as a root of this clinic. Throws `UserError` for a
    /// folder that holds files of another clinic.
    void Create(const std::filesystem::path& folder);

    /// Returns the identity of the clinic that the markers contain; empty for a database without a marked root.
    std::string StoredIdentity() const;

private:
    bool IsMarked(const std::filesystem::path& folder, Platform::Long root) const;
    std::filesystem::path DirectoryOf(Platform::Long root) const;
    bool HoldsKnownFiles(const std::filesystem::path& folder, Platform::Long root) const;
    const std::string& Identity();

    Ref<Connection> con_;
    std::string identity_;
    std::map<Platform::Long, std::filesystem::path> folders_;
};

/// The name of the marker file in a storage root.
constexpr const char* RootMarker = ".oxclass-root";

}  // namespace Console
