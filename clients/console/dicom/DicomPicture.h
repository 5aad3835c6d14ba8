#pragma once

#include <filesystem>
#include <string>

namespace Console {

/// The space that a picture is shown in, in pixels of the screen.
struct PixelSpace {
    unsigned width = 1;
    unsigned height = 1;

    /// Returns the width and height of a picture of this proportion, width by height, that is shown as large as the
    /// space permits; neither is 0.
    PixelSpace Fitted(double proportion) const;
};

/// The first frame of a DICOM file as it is shown.
struct DicomPicture {
    std::string png;        ///< a PNG file's bytes, gray or colour, 8 bits a channel
    double proportion = 1;  ///< width by height of the whole picture; its pixels need not be square
    int frames = 1;         ///< that the file has
};

/// Renders the first frame of a DICOM file.
///
/// Gray values are converted as the file specifies (see `GrayTable`), in full size and before the picture is reduced. A
/// gray picture that is not an intra-oral film and whose Patient Orientation is known is turned upright: in a frontal
/// view the patient's left is on the right, in a lateral view the patient looks to the right. Any other picture is not
/// turned. A picture has at most the pixels that it is shown with in `space`: if it has more in a direction, it is
/// reduced in that direction to the means of the areas. A smaller one keeps its pixels.
///
/// Throws `std::runtime_error` whose text is one clause, without the path, about the reason: not a DICOM file, no
/// pixels, pixels that are cut short, damaged or of an encoding that can't be read, more than 100 million pixels.
/// Memory is bounded by the size of one frame.
DicomPicture RenderDicom(const std::filesystem::path& path, PixelSpace space);

/// Returns the reason why `RenderDicom` throws for a file; empty if it returns a picture. Decodes the first frame,
/// except that plain gray pixels, whose description tells whether they can be shown, are not read.
std::string WhyNoPicture(const std::filesystem::path& path);

/// Returns the same reason without rendering uncompressed pixels of any kind: of these it checks only the number, which
/// must suffice for rows and columns. It decodes compressed pixels.
std::string WhyNoPictureQuickly(const std::filesystem::path& path);

}  // namespace Console
