#pragma once

#include "platform/runtime/Date.h"

#include <string>

namespace Console {

/// Returns the day that the user typed.
///
/// Accepts the ISO forms "1980-01-31" and "19800131", the same with points or slashes and the year first, and
/// forms that can be read in one way only: "31.01.1980" (there is no month 31), "31 Jan 1980", "Jan 31,
/// 1980". Years have four digits. Throws `UserError` for a text with two readings, which the message names
/// ("05.03.1980" is 5 March or 3 May), and for any other text; the message says what to write.
Platform::Date TypedDate(const std::string& text);

/// The days from `first` to `last`; the zero date leaves a side open.
struct TypedDays {
    Platform::Date first, last;
};

/// Returns the days that the user typed: a day as `TypedDate` reads it, "today", or two of them as "FIRST..LAST", of
/// which one may be left out. Throws as `TypedDate`, and `UserError` if the last day is before the first.
TypedDays DaysTyped(const std::string& text);

}  // namespace Console
