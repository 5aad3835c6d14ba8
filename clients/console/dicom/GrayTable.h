#pragma once

#include <vector>

class DcmItem;

namespace Console {

/// Returns the table that converts the samples of a gray picture to the gray values that are shown.
///
/// The steps are, in the order of the standard: extract the stored bits; apply Modality LUT or rescale; apply VOI LUT,
/// else the first window with its function, else a window over all values that occur; invert if Presentation LUT Shape,
/// else Photometric Interpretation, requires it. Samples in the range of Pixel Padding Value are background: they are
/// black, and do not count as values that occur.
///
/// The result has an element for each value that a sample of Bits Allocated bits can have, 0 black to 255
/// white. `occurs` has as many elements, each true if the picture contains the value.
///
/// Throws `std::runtime_error` if Bits Allocated, Bits Stored and High Bit do not describe a sample of 8 or 16 bits.
std::vector<unsigned char> GrayTable(DcmItem& set, const std::vector<bool>& occurs);

/// Throws if `GrayTable` throws for this data set.
void RequireGrayForm(DcmItem& set);

}  // namespace Console
