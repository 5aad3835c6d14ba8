#pragma once

#include <string>

namespace Console {

/// Returns an SVG drawing as the bytes of a PNG file, `width` pixels wide, with its height in proportion. Throws
/// `std::runtime_error` for a text that is not an SVG drawing, and for a drawing too large for the memory.
std::string PngOfSvg(const std::string& svg, unsigned width);

}  // namespace Console
