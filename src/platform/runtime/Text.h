#pragma once

#include "platform/runtime/Types.h"

#include <string_view>
#include <vector>

/// Texts, counted and cut as the system's wide-character strings are.
///
/// Inside, a text is UTF-8. Each length and position here counts UTF-16 units: one for a character of
/// the basic plane, two for one beyond it, so that a cut to 60 fits a 60-wide column. A cut that would
/// fall into the middle of a pair leaves the whole character out. A byte that is no part of valid
/// UTF-8 counts as one unit and is kept as it is. Any thread may call anything here.
namespace Platform {

/// The number of UTF-16 units of `text`.
Long Len(std::string_view text);

/// The first or last `count` units; the whole text where it is shorter. Raises 5 for a negative count.
String Left(std::string_view text, Long count);
String Right(std::string_view text, Long count);

/// The units from position `start`, counted from 1, at most `count` of them (all that follow when left
/// out). A start behind the end gives the empty text. Raises 5 for a start below 1 or a negative count.
String Mid(std::string_view text, Long start);
String Mid(std::string_view text, Long start, Long count);

/// The text without the blanks (U+0020 and nothing else) at both ends.
String Trim(std::string_view text);

/// Upper and lower case, one character for one: a character whose other case has two stays as it is.
String UCase(std::string_view text);
String LCase(std::string_view text);

/// True if both texts are equal without regard to case, character by character.
bool EqualsIgnoringCase(std::string_view a, std::string_view b);

/// The text with every `find` replaced by `by`; unchanged where `find` is empty.
String Replace(std::string_view text, std::string_view find, std::string_view by);

/// True if `sought` stands anywhere in `text`, case mattering. An empty `sought` is in every text.
bool Contains(std::string_view text, std::string_view sought);

/// The parts of `text` between the delimiters, compared without regard to case. An empty text has no
/// part; an empty delimiter gives the whole text as the only part; a delimiter at the end gives an
/// empty last part.
std::vector<String> SplitIgnoringCase(std::string_view text, std::string_view delimiter);

/// The text in UTF-16 and back. What is no valid UTF-8 becomes U+FFFD on the way out, and half a pair
/// becomes U+FFFD on the way in.
std::u16string ToUtf16(std::string_view text);
String FromUtf16(std::u16string_view text);

}  // namespace Platform
