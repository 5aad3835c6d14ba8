#pragma once

#include "frame/modGeneral.h"

#include <array>
#include <bitset>

/// The tooth string, the text form of a tooth selection: for each tooth its two FDI digits and a comma, as in
/// "11,21,48,". The last comma may be missing. An empty selection is the empty text. Any thread may call.
namespace OXClass {

/// The numbers of the 52 teeth in their order: quadrants 1 to 4 with eight permanent teeth each, then
/// quadrants 5 to 8 with five primary teeth each.
extern const std::array<Integer, 52> AllTeeth;

/// A set of teeth: the bit of a tooth's number is set if the tooth is selected. Other bits are never set.
using ToothSet = std::bitset<89>;

/// Calls `select` with the number of each tooth in a tooth string, in the order of the text. Reads two
/// characters at the positions 1, 4, 7 and so on, and ignores the character between them. Makes no call for a
/// text of blanks.
///
/// Raises 91 if two characters don't name a tooth, after the calls for those before it, and 6 for a text of
/// more than 32767 characters, before any call.
template <class Select>
void ReadToothString(const String& teeth, Select select);

/// Returns the set of teeth that a tooth string selects. Raises 91 and 6 as `ReadToothString`.
ToothSet TeethOf(const String& teeth);

/// Returns the number of the tooth that two digits name; 0 if they name none or `digits` has another length.
Integer ToothNumber(std::string_view digits);

template <class Select>
void ReadToothString(const String& teeth, Select select) {
    if (Trim(teeth).empty()) return;
    const auto length = CInt(Len(teeth));
    const bool bytes = static_cast<std::size_t>(length) == teeth.size();  // each character is one byte
    for (Long i = 1; i <= length; i += 3) {
        const Integer number = ToothNumber(bytes ? teeth.substr(static_cast<std::size_t>(i - 1), 2) : Mid(teeth, i, 2));
        if (number == 0) Raise(err::ObjectNotSet);
        select(number);
        if (i + 3 > INT16_MAX) Raise(err::Overflow);  // the position counts in 16 bits
    }
}

}  // namespace OXClass
