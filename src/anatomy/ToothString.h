#pragma once

#include "frame/modGeneral.h"

#include <array>
#include <bitset>

/// The text form of a tooth selection: for each tooth its two FDI digits and a comma, "11,21,48,".
namespace OXClass {

/// The 52 teeth in their order: quadrants 1 to 4 with eight permanent teeth each, then 5 to 8 with five
/// primary ones.
extern const std::array<Integer, 52> AllTeeth;

/// A set of teeth by number; numbers that are no teeth are never set.
using ToothSet = std::bitset<89>;

/// Calls `select` with the number of each record of a tooth string, in the text's order: the two
/// characters at position 1, 4, 7 and so on, whatever stands between. A text of blanks has none. Raises
/// 91 at the first two characters that name no tooth, when the records before it have been handed out.
template <class Select>
void ReadToothString(const String& teeth, Select select);

/// The teeth that a tooth string selects. Raises 91 as `ReadToothString`.
ToothSet TeethOf(const String& teeth);

/// The number of a tooth from its two digits, 0 if they name none.
Integer ToothNumber(std::string_view digits);

template <class Select>
void ReadToothString(const String& teeth, Select select) {
    if (Trim(teeth).empty()) return;
    const auto length = CInt(Len(teeth));
    const bool bytes = static_cast<std::size_t>(length) == teeth.size();  // each character is one byte
    for (Long i = 1; i <= length; i += 3) {
        const Integer number =
            ToothNumber(bytes ? teeth.substr(static_cast<std::size_t>(i - 1), 2) : Mid(teeth, i, 2));
        if (number == 0) Raise(err::ObjectNotSet);
        select(number);
        if (i + 3 > INT16_MAX) Raise(err::Overflow);  // the position counts in 16 bits
    }
}

}  // namespace OXClass
