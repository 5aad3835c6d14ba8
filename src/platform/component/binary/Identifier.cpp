#include "platform/component/binary/Identifier.h"

#include <charconv>

namespace Platform {
namespace {

constexpr std::string_view Form = "xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx";

bool IsHexDigit(char c) { return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F'); }

template <class Number>
Number Hexadecimal(std::string_view digits) {
    Number number = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), number, 16);
    return number;
}

}  // namespace

bool IsGuid(std::string_view text) {
    if (text.size() != Form.size()) return false;
    for (std::size_t i = 0; i < text.size(); ++i)
        if (Form[i] == 'x' ? !IsHexDigit(text[i]) : text[i] != Form[i]) return false;
    return true;
}

GUID GuidOf(std::string_view text) {
    GUID guid{Hexadecimal<std::uint32_t>(text.substr(0, 8)),
              Hexadecimal<std::uint16_t>(text.substr(9, 4)),
              Hexadecimal<std::uint16_t>(text.substr(14, 4)),
              {}};
    constexpr std::size_t places[] = {19, 21, 24, 26, 28, 30, 32, 34};
    for (std::size_t i = 0; i < 8; ++i) guid.Data4[i] = Hexadecimal<std::uint8_t>(text.substr(places[i], 2));
    return guid;
}

}  // namespace Platform
