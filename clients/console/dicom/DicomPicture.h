#pragma once

#include <filesystem>
#include <string>

namespace Console {

/// The first frame of a DICOM file as it is shown.
struct DicomPicture {
    std::string png;        ///< a PNG file's bytes, gray or colour, 8 bits a channel
    double proportion = 1;  ///< width by height of the whole picture; its pixels need not be square
    int frames = 1;         ///< that the file has
};

/// Renders the first frame of a DICOM file.
///
/// Gray values pass what the file says of them (see `GrayTable`), in full size and before the picture is
/// made smaller. A gray picture that is no intra-oral film and whose Patient Orientation is known is turned
/// upright, with the patient's left on the right of a frontal view and the face to the right in a lateral
/// one; any other picture stays as it is stored. No side has more than `longestSide` pixels: a larger
/// picture is made smaller, evenly; a smaller one keeps its pixels.
///
/// Throws `std::runtime_error` whose text tells in one clause, without the path, why there is no picture:
/// no DICOM file, no pixels, pixels that are cut short, damaged or of an encoding that can't be read, more
/// than 100 million pixels. Memory is bounded by the size of one frame.
DicomPicture RenderDicom(const std::filesystem::path& path, unsigned longestSide);

/// Why `RenderDicom` has no picture of a file, found by decoding its first frame; empty where it has one.
std::string WhyNoPicture(const std::filesystem::path& path);

/// The same without rendering pixels that aren't compressed, which is fast: that they are enough for rows and
/// columns is all that is looked at. Compressed pixels are decoded.
std::string WhyNoPictureQuickly(const std::filesystem::path& path);

}  // namespace Console
