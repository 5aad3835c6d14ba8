#pragma once

#include <cstdint>
#include <string>

namespace Platform {

/// A text in UTF-8. Empty is a value; there is no null text.
///
/// Where a length or a position is told, it counts characters as a wide-character string does,
/// one UTF-16 unit each (see Text.h).
using String = std::string;

/// The whole numbers of the system: 16 and 32 bits, signed.
using Integer = std::int16_t;
using Long = std::int32_t;

}  // namespace Platform
