#pragma once

#include "platform/runtime/Types.h"

#include <string_view>
#include <vector>

/// Operations on texts, with lengths and positions as columns and callers count them.
///
/// A text is stored in UTF-8. Each length and position here counts UTF-16 units: one for a character of the basic
/// plane, two for any other, so that a text cut to 60 fits a column of 60. A cut that would split a surrogate pair
/// omits the whole character. A byte that is not valid UTF-8 counts as one unit and is preserved. Any thread may call
/// the functions.
namespace Platform {

/// Returns the number of UTF-16 units of `text`.
Long Len(std::string_view text);

/// Return the first or the last `count` units, or the whole text if it is shorter. Raise 5 for a negative count.
String Left(std::string_view text, Long count);
String Right(std::string_view text, Long count);

/// Return at most `count` units (all, if `count` is left out) from position `start`, which counts from 1. The result is
/// empty if `start` is after the end. Raise 5 for a start below 1 or a negative count.
String Mid(std::string_view text, Long start);
String Mid(std::string_view text, Long start, Long count);

/// Returns the text without the blanks at both ends. Only U+0020 is a blank.
String Trim(std::string_view text);

/// Return the text in upper or lower case. A character whose other case has more than one character is unchanged.
String UCase(std::string_view text);
String LCase(std::string_view text);

/// Returns true if the texts are equal without regard to case.
bool EqualsIgnoringCase(std::string_view a, std::string_view b);

/// Returns the text with every `find` replaced by `by`; the unchanged text if `find` is empty.
String Replace(std::string_view text, std::string_view find, std::string_view by);

/// Returns true if `text` contains `sought`, with regard to case. Every text contains the empty text.
bool Contains(std::string_view text, std::string_view sought);

/// Returns the parts of `text` between the delimiters, which are found without regard to case. An empty text has no
/// parts. With an empty delimiter the whole text is the only part. After a delimiter at the end there is an empty last
/// part.
std::vector<String> SplitIgnoringCase(std::string_view text, std::string_view delimiter);

/// Convert between UTF-8 and UTF-16. Invalid UTF-8 and half of a surrogate pair become U+FFFD.
std::u16string ToUtf16(std::string_view text);
String FromUtf16(std::u16string_view text);

/// Writes the UTF-16 units of a text to `units`, which has room for one unit for each byte of the text, and returns
/// their number.
std::size_t ToUtf16(std::string_view text, char16_t* units);

}  // namespace Platform
