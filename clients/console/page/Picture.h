#pragma once

#include "console/dicom/DicomPicture.h"

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

/// Returns the picture in a file with at most the pixels that it is shown with in `space`: a DICOM file as
/// `RenderDicom` renders it, a JPEG or PNG file unchanged if it has no more pixels. A larger one is reduced to the
/// means of the areas and stays a JPEG or PNG file, with its colour profile. A photograph whose file contains an
/// orientation is turned, and returned as a PNG if it is not reduced.
///
/// Throws `std::runtime_error` whose text is one clause about the reason, without the path: a missing file, more than
/// 256 MB or 100 million pixels, a file that is damaged, cut short or of another type.
Picture ReadPicture(const std::filesystem::path& path, const PixelSpace& space);

/// Returns the reason why `ReadPicture` throws for a file; empty if it returns a picture.
std::string WhyNotReadable(const std::filesystem::path& path);

/// Returns the same reason, but decodes only compressed DICOM pictures. Of other files it checks that they exist, their
/// size, their header and the number of their pixels.
std::string WhyNotReadableQuickly(const std::filesystem::path& path);

}  // namespace Console
