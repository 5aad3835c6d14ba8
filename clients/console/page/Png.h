#pragma once

#include <string>

namespace Console {

/// An SVG drawing as a PNG file's bytes, `width` pixels wide, its height in proportion. Throws
/// `std::runtime_error` for a text that is no SVG, and for a drawing too large for the memory.
std::string PngOfSvg(const std::string& svg, unsigned width);

}  // namespace Console
