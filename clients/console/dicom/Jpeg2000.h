#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace Console {

/// A decoded JPEG 2000 image: its samples pixel by pixel, row by row.
struct Jpeg2000Image {
    unsigned columns = 0;
    unsigned rows = 0;
    unsigned channels = 0;  ///< samples a pixel, 1 or 3
    unsigned bits = 0;      ///< of a sample, 1 to 16
    bool isSigned = false;
    std::vector<std::uint16_t> samples;  ///< the lower `bits` bits, two's complement where signed
};

/// Decodes a JPEG 2000 codestream, or a JP2 file around one. The samples of a codestream with a colour
/// transform are RGB.
///
/// Throws `std::runtime_error` whose text is one clause about the reason: a codestream that is cut short
/// or damaged, that has not `rows`, `columns` and `channels`, or whose samples have more than 16 bits.
/// Compares the size before it allocates memory for the samples.
Jpeg2000Image DecodeJpeg2000(std::string_view codestream, unsigned rows, unsigned columns, unsigned channels);

}  // namespace Console
