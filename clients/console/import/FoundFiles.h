#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace Console {

/// A file to import.
struct FoundFile {
    std::filesystem::path path;
    bool named = false;  ///< the user named it; otherwise it was found in a folder
};

/// The files that a command line names.
struct FoundFiles {
    std::vector<FoundFile> files;                                           ///< by their paths, each once
    std::vector<std::pair<std::filesystem::path, std::string>> unreadable;  ///< folders, with the reason
};

/// Finds the files that were named and those of the folders, with all folders below. Linked folders are
/// followed, and each folder is read once, however many links lead to it. A DICOMDIR that was named stands
/// for its folder. Throws `UserError` for a name that is neither a file nor a folder.
FoundFiles FindFiles(const std::vector<std::string>& names);

/// Returns true for a file that the user expects to be a radiograph: it was named, or its name ends in ".dcm",
/// ".dic" or ".dicom". Other files of a folder may be anything.
bool IsExpectedRadiograph(const FoundFile& file);

}  // namespace Console
