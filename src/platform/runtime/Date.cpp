#include "platform/runtime/Date.h"

#include "platform/runtime/Error.h"

#include <chrono>
#include <cmath>

namespace Platform {
namespace {

using std::chrono::sys_days;
constexpr sys_days DayZero = std::chrono::year{1899} / 12 / 30;
constexpr long SecondsADay = 86400;

void AppendPadded(String& out, int number, std::size_t width) {
    const String digits = std::to_string(number);
    if (digits.size() < width) out.append(width - digits.size(), '0');
    out += digits;
}

char Lowered(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; }

/// Appends the value of a run of one pattern letter. Returns false if the letter is not part of the pattern language.
bool AppendToken(String& out, const DateParts& parts, char letter, std::size_t run, bool minutes) {
    switch (letter) {
        case 'y':
            if (run >= 3)
                AppendPadded(out, parts.Year, 4);
            else
                AppendPadded(out, parts.Year % 100, 2);
            return true;
        case 'm': AppendPadded(out, minutes ? parts.Minute : parts.Month, run); return true;
        case 'd': AppendPadded(out, parts.Day, run); return true;
        case 'h': AppendPadded(out, parts.Hour, run); return true;
        case 'n': AppendPadded(out, parts.Minute, run); return true;
        case 's': AppendPadded(out, parts.Second, run); return true;
        default: return false;
    }
}

}  // namespace

DateParts PartsOf(Date date) {
    if (!(date.Days > FirstDay - 1 && date.Days < LastDay + 1)) Raise(err::InvalidCall);
    double day = std::trunc(date.Days);
    long second = std::lround(std::fabs(date.Days - day) * SecondsADay);
    if (second == SecondsADay) {
        second = 0;
        day += 1;
        if (day > LastDay) Raise(err::InvalidCall);
    }
    const std::chrono::year_month_day ymd{DayZero + std::chrono::days{static_cast<int>(day)}};
    return {int(ymd.year()),
            static_cast<int>(unsigned(ymd.month())),
            static_cast<int>(unsigned(ymd.day())),
            static_cast<int>(second / 3600),
            static_cast<int>(second / 60 % 60),
            static_cast<int>(second % 60)};
}

Date DateFrom(const DateParts& parts) {
    const sys_days day = std::chrono::year{parts.Year} / parts.Month / parts.Day;
    const auto days = static_cast<double>((day - DayZero).count());
    const double time = (parts.Hour * 3600 + parts.Minute * 60 + parts.Second) / double(SecondsADay);
    return {days < 0 ? days - time : days + time};
}

bool IsCalendarDay(int year, int month, int day) {
    return year >= 100 && year <= 9999 && month >= 1 && month <= 12 && day >= 1 && day <= 31 &&
           (std::chrono::year{year} / month / day).ok();
}

String FormatDate(Date date, std::string_view pattern) {
    const DateParts parts = PartsOf(date);
    String out;
    bool behindHour = false;
    for (std::size_t at = 0; at < pattern.size();) {
        const char letter = Lowered(pattern[at]);
        std::size_t run = 1;
        while (at + run < pattern.size() && Lowered(pattern[at + run]) == letter) ++run;
        if (AppendToken(out, parts, letter, run, behindHour))
            behindHour = letter == 'h';
        else
            out.append(pattern, at, run);
        at += run;
    }
    return out;
}

}  // namespace Platform
