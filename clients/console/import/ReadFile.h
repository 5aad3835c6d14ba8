#pragma once

#include "console/dicom/DicomFile.h"

#include <optional>

namespace Console {

/// The result of reading a file for an import.
struct ReadFile {
    std::optional<RadiographFile> file;  ///< null for a file that was refused
    std::string refusal;                 ///< why it was refused, one clause
    bool foreign = false;                ///< refused because it isn't a DICOM file with a picture at all
    bool object = false;                 ///< foreign, and a DICOM object of a kind without picture
    std::vector<std::string> listed;     ///< the files that a DICOMDIR names, below its folder
    std::string noPicture;  ///< why the picture can't be drawn, though the file can be stored; empty if it can
};

/// Reads the radiograph `path`; never throws. The bytes are for `Unpacked`, in another process.
std::string ReadPacked(const std::string& path);

/// Returns the result that `ReadPacked` returned as bytes.
ReadFile Unpacked(const std::string& bytes);

}  // namespace Console
