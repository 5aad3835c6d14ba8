#pragma once

#include "console/Database.h"

namespace Console {

/// The storage roots of a clinic, each checked before it is used.
///
/// A root is a folder with a marker file, ".oxclass-root", that names the clinic of the database. So a
/// folder whose disk isn't mounted, or that belongs to another clinic, is noticed before a file is written to
/// it. A root is never created here. Used by the thread of its connection.
class StorageRoots {
public:
    explicit StorageRoots(Ref<Connection> con) : con_(std::move(con)) {}

    /// The folder of a root. A root of an older database, which has no marker, gets one if it holds an image
    /// file that the database knows, or if the database knows none in it. Throws `UserError` for an unknown
    /// root, a missing folder, a folder without the files that it should hold, and one of another clinic.
    const std::filesystem::path& Folder(Platform::Long root);

    /// Checks a root as `Folder` does, and writes nothing.
    void Inspect(Platform::Long root) const;

    /// The number of the root that takes new files. Throws `UserError` if there is none.
    Platform::Long ActiveRoot() const;

    /// Creates the folder if it is missing, and marks it as a root of this clinic. Throws `UserError` for a
    /// folder that holds files of another clinic.
    void Create(const std::filesystem::path& folder);

    /// What names the clinic in the markers; empty for a database that has no marked root yet.
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
