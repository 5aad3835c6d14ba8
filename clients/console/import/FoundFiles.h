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

/// Finds the named files, and the files in the named folders and in all folders below. Follows links to folders; reads
/// each folder once, even if several links lead to it. For a named DICOMDIR reads its folder. Throws `UserError` for a
/// name that is neither a file nor a folder.
FoundFiles FindFiles(const std::vector<std::string>& names);

/// Returns true for a file that the user expects to be a radiograph: it was named, or its name ends in ".dcm",
/// ".dic" or ".dicom". Other files of a folder may be anything.
bool IsExpectedRadiograph(const FoundFile& file);

}  // namespace Console
