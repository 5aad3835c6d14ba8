#pragma once

#include "platform/runtime/Types.h"

#include <compare>
#include <string_view>

namespace Platform {

/// A point in time: days since 1899-12-30, the fraction being the time of day. No time zone.
///
/// Day 0 is the zero date, which means not set. Before it the whole part decreases while the fraction still increases
/// with the time of day: -1.5 is noon of 1899-12-29. Dates compare by their number.
struct Date {
    double Days = 0;

    friend auto operator<=>(const Date&, const Date&) = default;
};

/// The components of a date, rounded to the nearest whole second.
struct DateParts {
    int Year;    ///< 100 to 9999
    int Month;   ///< 1 to 12
    int Day;     ///< 1 to 31
    int Hour;    ///< 0 to 23
    int Minute;  ///< 0 to 59
    int Second;  ///< 0 to 59
};

/// The first and the last day that a date can hold, 0100-01-01 and 9999-12-31.
constexpr double FirstDay = -657434;
constexpr double LastDay = 2958465;

/// Returns the components of `date`. Raises 5 for a date outside the years 100 to 9999.
DateParts PartsOf(Date date);

/// Returns the date of a calendar day and a time of day. The components must be a valid day, which `IsCalendarDay`
/// checks, and a valid time.
Date DateFrom(const DateParts& parts);

/// Returns true if the year is from 100 to 9999 and has this day.
bool IsCalendarDay(int year, int month, int day);

/// Returns the text of `date`, formatted by a pattern.
///
/// "yyyy" and "yy" are the year, "mm" and "m" the month, "dd" and "d" the day, "hh" and "h" the hour of 24, "nn" and
/// "n" the minutes, "ss" and "s" the seconds, in upper or lower case. "mm" and "m" after "hh" or "h", also with
/// separators between them, are minutes. Any other character is copied. Raises 5 as `PartsOf`.
String FormatDate(Date date, std::string_view pattern);

}  // namespace Platform
