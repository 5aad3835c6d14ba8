#pragma once

#include <filesystem>
#include <string>

namespace Console {

/// A picture that a page can show: an image file's bytes, and of which kind they are.
struct Picture {
    std::string mediaType;  ///< "image/png" or "image/jpeg"
    std::string bytes;
};

/// The picture in a file: a JPEG or PNG file as it is, a DICOM file's pixels with their window, no side
/// longer than `longestSide`. A photograph whose file says to turn it comes turned, as a PNG.
///
/// Throws `std::runtime_error` whose text tells in one clause, without the path, why there is none: no such
/// file, more than 256 MB or 100 million pixels, a damaged, cut or another kind of file.
Picture ReadPicture(const std::filesystem::path& path, unsigned longestSide);

}  // namespace Console
