#pragma once

#include <filesystem>
#include <string>

namespace Console {

/// A picture that a page can show: an image file's bytes, and of which kind they are.
struct Picture {
    std::string mediaType;  ///< "image/png" or "image/jpeg"
    std::string bytes;
    double proportion = 0;  ///< width by height as it is shown; 0: that of its pixels
    int frames = 1;         ///< that its file has; the picture is the first
};

/// The picture in a file: a JPEG or PNG file as it is, a DICOM file as `RenderDicom` renders it, no side
/// longer than `longestSide`. A photograph whose file says to turn it comes turned, as a PNG.
///
/// Throws `std::runtime_error` whose text tells in one clause, without the path, why there is none: no such
/// file, more than 256 MB or 100 million pixels, a damaged, cut or another kind of file.
Picture ReadPicture(const std::filesystem::path& path, unsigned longestSide);

/// Why `ReadPicture` throws for a file; empty where it returns a picture.
std::string WhyNotReadable(const std::filesystem::path& path);

/// The same without decoding pictures that aren't compressed DICOM: the file's presence, its size, its head
/// and the number of its pixels.
std::string WhyNotReadableQuickly(const std::filesystem::path& path);

}  // namespace Console
