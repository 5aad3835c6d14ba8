#pragma once

#include <cstdint>
#include <string>

namespace Platform {

/// A text in UTF-8. It may be empty and may contain any bytes; a text can't be null.
///
/// Every length and position in an interface counts UTF-16 units, as a wide-character string does, and not bytes (see
/// Text.h).
using String = std::string;

/// The whole numbers of the system: 16 and 32 bits, signed.
using Integer = std::int16_t;
using Long = std::int32_t;

}  // namespace Platform
