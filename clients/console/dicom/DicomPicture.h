#pragma once

#include <filesystem>
#include <string>

namespace Console {

/// The picture of a DICOM file as a PNG file's bytes, gray or colour, 8 bits a channel.
///
/// Gray values pass the file's own window, the first where it has several, else the range that they
/// fill; light stands for dense in either photometric interpretation. Of several frames it is the
/// first. No side is longer than `longestSide` pixels; a larger picture is made smaller, evenly.
///
/// Throws `std::runtime_error` whose text tells in one clause, without the path, why there is no picture:
/// no DICOM file, no pixels, an encoding that can't be read, more than 100 million pixels.
std::string DicomPictureAsPng(const std::filesystem::path& path, unsigned longestSide);

}  // namespace Console
