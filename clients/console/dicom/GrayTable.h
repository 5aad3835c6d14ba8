#pragma once

#include <vector>

class DcmItem;

namespace Console {

/// How the samples of a gray picture are shown.
///
/// A sample passes, in the order of the standard: the bits that are stored, Modality LUT or rescale, VOI
/// LUT, else the first window with its function, else a window over all values that occur, and the
/// inversion that Presentation LUT Shape, else Photometric Interpretation, asks for. Samples of Pixel
/// Padding Value and its range are background: black, and no part of the values that occur.
///
/// The result has an element for each value that a sample of Bits Allocated bits can have, 0 black to 255
/// white. `occurs` has as many elements and tells which values the picture has.
///
/// Throws `std::runtime_error` where Bits Allocated, Bits Stored and High Bit describe no sample of 8 or 16
/// bits.
std::vector<unsigned char> GrayTable(DcmItem& set, const std::vector<bool>& occurs);

}  // namespace Console
