#include "console/patients/TypedDate.h"

#include "console/Output.h"
#include "platform/runtime/Services.h"
#include "platform/runtime/Text.h"

#include <array>
#include <cmath>
#include <fmt/format.h>
#include <optional>
#include <regex>

namespace Console {
namespace {

using Platform::Date;

constexpr std::array<const char*, 12> Months{"jan", "feb", "mar", "apr", "may", "jun",
                                             "jul", "aug", "sep", "oct", "nov", "dec"};

std::optional<Date> DayOf(int year, int month, int day) {
    constexpr int earliest = 1800, latest = 9999;
    if (year < earliest || year > latest || !Platform::IsCalendarDay(year, month, day)) return std::nullopt;
    return Platform::DateFrom({year, month, day, 0, 0, 0});
}

int Number(const std::smatch& match, std::size_t group) { return std::stoi(match[group].str()); }

/// Returns the month that a word of at least three letters begins, 1 to 12; 0 for any other word.
int MonthNamed(const std::string& word) {
    const std::string start = Platform::LCase(word.substr(0, 3));
    for (std::size_t i = 0; i < Months.size(); ++i)
        if (start == Months[i]) return static_cast<int>(i + 1);
    return 0;
}

std::optional<Date> YearFirst(const std::string& text) {
    static const std::regex separated(R"((\d{4})([-./])(\d{1,2})\2(\d{1,2}))"), basic(R"((\d{4})(\d{2})(\d{2}))");
    std::smatch match;
    if (std::regex_match(text, match, separated)) return DayOf(Number(match, 1), Number(match, 3), Number(match, 4));
    if (std::regex_match(text, match, basic)) return DayOf(Number(match, 1), Number(match, 2), Number(match, 3));
    return std::nullopt;
}

std::optional<Date> MonthInWords(const std::string& text) {
    static const std::regex dayFirst(R"((\d{1,2})[-. ]+([A-Za-z]{3,9})\.?[-., ]+(\d{4}))"),
        monthFirst(R"(([A-Za-z]{3,9})\.?[-. ]+(\d{1,2})[., ]+(\d{4}))");
    std::smatch match;
    if (std::regex_match(text, match, dayFirst))
        return DayOf(Number(match, 3), MonthNamed(match[2].str()), Number(match, 1));
    if (std::regex_match(text, match, monthFirst))
        return DayOf(Number(match, 3), MonthNamed(match[1].str()), Number(match, 2));
    return std::nullopt;
}

std::optional<Date> YearLast(const std::string& text) {
    static const std::regex form(R"((\d{1,2})([-./])(\d{1,2})\2(\d{4}))");
    std::smatch match;
    if (!std::regex_match(text, match, form)) return std::nullopt;
    const int first = Number(match, 1), second = Number(match, 3), year = Number(match, 4);
    const auto dayFirst = DayOf(year, second, first), monthFirst = DayOf(year, first, second);
    if (dayFirst && monthFirst && *dayFirst != *monthFirst)
        throw UserError(fmt::format("\"{}\" can be read as {} or as {}; write one of these", text, DateText(*dayFirst),
                                    DateText(*monthFirst)));
    return dayFirst ? dayFirst : monthFirst;
}

Date DayTyped(const std::string& text) {
    return Platform::EqualsIgnoringCase(Platform::Trim(text), "today") ? Date{std::floor(Platform::Now().Days)}
                                                                       : TypedDate(text);
}

}  // namespace

Date TypedDate(const std::string& typed) {
    const std::string text = Platform::Trim(typed);
    constexpr std::size_t longest = 40;
    if (text.size() <= longest)
        for (const auto& read : {YearFirst, MonthInWords, YearLast})
            if (const auto date = read(text)) return *date;
    throw UserError(fmt::format("\"{}\" is not a date; write it as 1980-01-31", typed));
}

TypedDays DaysTyped(const std::string& text) {
    const auto dots = text.find("..");
    TypedDays days;
    if (dots == std::string::npos) {
        days.first = days.last = DayTyped(text);
        return days;
    }
    const std::string first = text.substr(0, dots), last = text.substr(dots + 2);
    if (!first.empty()) days.first = DayTyped(first);
    if (!last.empty()) days.last = DayTyped(last);
    const Date open;
    if (days.first != open && days.last != open && days.last < days.first)
        throw UserError(fmt::format("\"{}\" ends before it begins", text));
    return days;
}

}  // namespace Console
