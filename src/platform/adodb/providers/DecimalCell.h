#pragma once

#include "platform/adodb/Rows.h"

#include <charconv>

namespace ADODB {

/// Returns a decimal number, which an engine has written: a whole number if it is one and has 64 bits, otherwise the
/// nearest double. Any thread may call.
inline Cell DecimalCell(std::string_view text) {
    const char* const last = text.data() + text.size();
    std::int64_t whole = 0;
    if (const auto [end, failure] = std::from_chars(text.data(), last, whole); failure == std::errc() && end == last)
        return Cell::Of(whole);
    double real = 0;
    std::from_chars(text.data(), last, real);
    return Cell::Of(real);
}

}  // namespace ADODB
