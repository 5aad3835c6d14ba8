#include "platform/runtime/Convert.h"

#include "platform/runtime/Services.h"
#include "platform/runtime/System.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstring>

namespace Platform {
namespace {

template <class... Cases>
struct Overloaded : Cases... {
    using Cases::operator()...;
};
template <class... Cases>
Overloaded(Cases...) -> Overloaded<Cases...>;

// ---- locale -------------------------------------------------------------------------------------

Locale& ThreadLocale() {
    thread_local Locale locale = LocaleOfUser();
    return locale;
}

// ---- small readers ------------------------------------------------------------------------------

bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
bool IsSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

std::string_view WithoutSpace(std::string_view text) {
    while (!text.empty() && IsSpace(text.front())) text.remove_prefix(1);
    while (!text.empty() && IsSpace(text.back())) text.remove_suffix(1);
    return text;
}

/// Returns a double from "digits[.digits][e[sign]digits]" with a point; raises 6 where it is too large.
double FromDecimal(const String& text) {
    double value = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    if (result.ec == std::errc::result_out_of_range) {
        const auto exponent = text.find('e');
        if (exponent != String::npos && text[exponent + 1] == '-') return 0;
        if (text.starts_with("0.") || text.starts_with(".")) return 0;
        Raise(err::Overflow);
    }
    return value;
}

/// Returns the digits behind "&H" or "&O" as a signed number of 16 bits, or of 32 where they need more.
/// Reads the beginning of the text; `used` is the number of characters that were read.
double FromRadix(std::string_view text, std::size_t& used) {
    const bool hex = text.size() > 1 && (text[1] == 'h' || text[1] == 'H');
    std::uint64_t number = 0;
    used = 2;
    for (; used < text.size() && number <= 0xFFFFFFFFU; ++used) {
        const char c = text[used];
        int digit = IsDigit(c) ? c - '0' : 99;
        if (hex && IsLetter(c)) digit = (c | 0x20) - 'a' + 10;
        if (digit >= (hex ? 16 : 8)) break;
        number = number * (hex ? 16U : 8U) + static_cast<unsigned>(digit);
    }
    if (number > 0xFFFFFFFFU) Raise(err::Overflow);
    const bool wide = used < text.size() && text[used] == '&';
    if (number <= 0xFFFF && !wide) return static_cast<Integer>(number);
    return static_cast<Long>(number);
}

bool IsRadix(std::string_view text) {
    return text.size() > 2 && text[0] == '&' && std::strchr("hHoO", text[1]) != nullptr;
}

/// Copies a mantissa and an exponent in the locale's form into a form with a point; false if the text
/// is anything else.
bool ToPlainDecimal(std::string_view text, String& out) {
    const Locale& locale = UserLocale();
    bool digits = false, point = false;
    std::size_t at = 0;
    for (; at < text.size(); ++at) {
        if (IsDigit(text[at])) {
            out += text[at];
            digits = true;
        } else if (text[at] == locale.DecimalSign && !point) {
            out += '.';
            point = true;
        } else if (text[at] != locale.ThousandsSign || point || !digits) {
            break;
        }
    }
    if (!digits) return false;
    if (at == text.size()) return true;
    if (!std::strchr("eEdD", text[at])) return false;
    std::string_view exponent = text.substr(at + 1);
    out += 'e';
    if (!exponent.empty() && (exponent[0] == '+' || exponent[0] == '-')) {
        if (exponent[0] == '-') out += '-';
        exponent.remove_prefix(1);
    }
    out += exponent;
    return !exponent.empty() && std::all_of(exponent.begin(), exponent.end(), IsDigit);
}

double FromText(std::string_view whole) {
    std::string_view text = WithoutSpace(whole);
    if (IsRadix(text)) {
        std::size_t used = 0;
        const double number = FromRadix(text, used);
        if (used != text.size()) Raise(err::TypeMismatch);
        return number;
    }
    bool negative = false;
    if (text.size() > 2 && text.front() == '(' && text.back() == ')') {
        negative = true;
        text = WithoutSpace(text.substr(1, text.size() - 2));
    } else if (!text.empty() && (text.front() == '-' || text.front() == '+')) {
        negative = text.front() == '-';
        text = WithoutSpace(text.substr(1));
    } else if (!text.empty() && (text.back() == '-' || text.back() == '+')) {
        negative = text.back() == '-';
        text = WithoutSpace(text.substr(0, text.size() - 1));
    }
    String plain;
    if (!ToPlainDecimal(text, plain)) Raise(err::TypeMismatch);
    const double number = FromDecimal(plain);
    return negative ? -number : number;
}

template <class Whole>
Whole Rounded(double value) {
    const double nearest = std::nearbyint(value);
    if (!(nearest >= std::numeric_limits<Whole>::min() && nearest <= std::numeric_limits<Whole>::max()))
        Raise(err::Overflow);
    return static_cast<Whole>(nearest);
}

template <class Whole>
Whole ToWhole(const Variant& value) {
    return std::visit(Overloaded{
                          [](const std::integral auto& n) -> Whole {
                              if (!std::in_range<Whole>(static_cast<std::int64_t>(n))) Raise(err::Overflow);
                              return static_cast<Whole>(n);
                          },
                          [](bool b) -> Whole { return b ? -1 : 0; },
                          [&](const auto&) -> Whole { return Rounded<Whole>(CDbl(value)); },
                      },
                      value.Stored());
}

// ---- numbers to text ----------------------------------------------------------------------------

/// Writes the significant digits of a number whose decimal point follows digit `point`.
String LayOut(const String& digits, int point, int precision) {
    const auto count = static_cast<int>(digits.size());
    const char sign = UserLocale().DecimalSign;
    if (point > precision || count - point > precision) {
        String out = digits.substr(0, 1);
        if (count > 1) out += sign + digits.substr(1);
        const int exponent = point - 1;
        const String power = std::to_string(std::abs(exponent));
        return out + (exponent < 0 ? "E-" : "E+") + (power.size() < 2 ? "0" : "") + power;
    }
    if (point <= 0) return String("0") + sign + String(static_cast<std::size_t>(-point), '0') + digits;
    if (count <= point) return digits + String(static_cast<std::size_t>(point - count), '0');
    return digits.substr(0, static_cast<std::size_t>(point)) + sign + digits.substr(static_cast<std::size_t>(point));
}

String FloatText(double value, int precision) {
    if (value == 0) return "0";
    if (!std::isfinite(value)) Raise(err::Overflow);
    std::array<char, 40> buffer{};
    std::to_chars(buffer.data(), buffer.data() + buffer.size(), std::fabs(value), std::chars_format::scientific,
                  precision - 1);
    const std::string_view text = buffer.data();
    const auto e = text.find('e');
    String digits{text.substr(0, 1)};
    if (precision > 1) digits += text.substr(2, e - 2);
    digits.erase(digits.find_last_not_of('0') + 1);
    const int exponent = std::atoi(buffer.data() + e + 1);
    return (value < 0 ? "-" : "") + LayOut(digits, exponent + 1, precision);
}

// ---- dates --------------------------------------------------------------------------------------

/// "yyyy-mm-dd", alone or with " hh:nn" or " hh:nn:ss", read without looking at anything else.
std::optional<Date> ParseIso(std::string_view text) {
    if (text.size() != 10 && text.size() != 16 && text.size() != 19) return {};
    constexpr std::string_view form = "0000-00-00 00:00:00";
    for (std::size_t at = 0; at < text.size(); ++at)
        if (form[at] == '0' ? !IsDigit(text[at]) : text[at] != form[at]) return {};
    const auto two = [&](std::size_t at) { return (text[at] - '0') * 10 + text[at + 1] - '0'; };
    DateParts parts{two(0) * 100 + two(2), two(5), two(8), 0, 0, 0};
    if (text.size() > 10) parts.Hour = two(11), parts.Minute = two(14);
    if (text.size() > 16) parts.Second = two(17);
    if (!IsCalendarDay(parts.Year, parts.Month, parts.Day)) return {};
    if (parts.Hour > 23 || parts.Minute > 59 || parts.Second > 59) return {};
    return DateFrom(parts);
}

/// One word of a date's text: a number with its count of digits, or a word, and the mark behind it.
struct Word {
    int number = 0;
    std::size_t digits = 0;
    String letters;
    char behind = ' ';
};

/// Splits a text into at most `limit` words. Returns false if a character belongs to no word.
bool SplitWords(std::string_view text, std::vector<Word>& words) {
    constexpr std::size_t limit = 8;
    for (std::size_t at = 0; at < text.size();) {
        Word word;
        const std::size_t start = at;
        if (IsDigit(text[at])) {
            while (at < text.size() && IsDigit(text[at])) ++at;
            word.digits = at - start;
            if (word.digits > 4) return false;
            std::from_chars(text.data() + start, text.data() + at, word.number);
        } else if (IsLetter(text[at])) {
            while (at < text.size() && IsLetter(text[at])) ++at;
            word.letters = LCase(text.substr(start, at - start));
        } else {
            return false;
        }
        while (at < text.size() && text[at] == ' ') ++at;
        if (at < text.size() && std::strchr("/-.,:", text[at])) {
            word.behind = text[at++];
            while (at < text.size() && text[at] == ' ') ++at;
            if (at == text.size()) return false;
        }
        words.push_back(std::move(word));
        if (words.size() > limit) return false;
    }
    return !words.empty();
}

int MonthOfName(const String& letters) {
    static constexpr std::array<const char*, 12> names{"january",   "february", "march",    "april",
                                                       "may",       "june",     "july",     "august",
                                                       "september", "october",  "november", "december"};
    for (std::size_t i = 0; i < names.size(); ++i)
        if (letters == names[i] || letters == std::string_view(names[i]).substr(0, 3)) return int(i) + 1;
    return 0;
}

int FullYear(const Word& word) {
    if (word.digits > 2) return word.number;
    return word.number < 30 ? 2000 + word.number : 1900 + word.number;
}

/// Takes the time off the end of the words: "h:n", "h:n:s", each with or without AM or PM, "h PM".
/// False if there is a time and it names no time of day.
bool TakeTime(std::vector<Word>& words, DateParts& parts) {
    int half = -1;
    if (!words.empty() && (words.back().letters == "am" || words.back().letters == "pm")) {
        half = words.back().letters == "pm";
        words.pop_back();
    }
    std::size_t first = words.size();
    while (first > 0 && words[first - 1].digits && (first == words.size() || words[first - 1].behind == ':')) --first;
    std::size_t count = words.size() - first;
    if (count > 1 && first > 0 && words[first - 1].behind != ' ') return false;
    if (count < 2 && half < 0) return count == 0 || words[first].behind != ':';
    if (count < 1 || count > 3) return false;
    if (count > 1 || half >= 0) {
        parts.Hour = words[first].number;
        parts.Minute = count > 1 ? words[first + 1].number : 0;
        parts.Second = count > 2 ? words[first + 2].number : 0;
        words.resize(first);
    }
    if (half == 1 && parts.Hour < 12) parts.Hour += 12;
    if (half == 0 && parts.Hour == 12) parts.Hour = 0;
    return parts.Hour < 24 && parts.Minute < 60 && parts.Second < 60;
}

bool TakeDay(DateParts& parts, int year, int month, int day) {
    if (!IsCalendarDay(year, month, day)) return false;
    parts.Year = year, parts.Month = month, parts.Day = day;
    return true;
}

/// Returns day, month and year from three numbers, in the order of the locale or else in any order that is a valid day.
bool TakeNumericDay(const std::vector<Word>& w, DateParts& parts) {
    using enum Locale::Order;
    const auto in = [&](Locale::Order order) {
        switch (order) {
            case MonthDayYear: return TakeDay(parts, FullYear(w[2]), w[0].number, w[1].number);
            case DayMonthYear: return TakeDay(parts, FullYear(w[2]), w[1].number, w[0].number);
            case YearMonthDay: return TakeDay(parts, FullYear(w[0]), w[1].number, w[2].number);
        }
        return false;
    };
    if (w[0].digits > 2) return in(YearMonthDay);
    return in(UserLocale().DateOrder) || in(MonthDayYear) || in(DayMonthYear) || in(YearMonthDay);
}

bool TakeNamedDay(std::vector<Word> words, DateParts& parts) {
    int month = 0;
    for (std::size_t i = 0; i < words.size() && !month; ++i) {
        month = MonthOfName(words[i].letters);
        if (month) words.erase(words.begin() + static_cast<std::ptrdiff_t>(i));
    }
    if (!month || words.empty() || words.size() > 2) return false;
    for (const Word& word : words)
        if (!word.digits) return false;
    const int thisYear = PartsOf(Now()).Year;
    if (words.size() == 1) return TakeDay(parts, thisYear, month, words[0].number);
    return TakeDay(parts, FullYear(words[1]), month, words[0].number) ||
           TakeDay(parts, FullYear(words[0]), month, words[1].number);
}

}  // namespace

const Locale& UserLocale() { return ThreadLocale(); }

void SetUserLocale(const Locale& locale) { ThreadLocale() = locale; }

Integer CInt(const Variant& value) { return ToWhole<Integer>(value); }

Long CLng(const Variant& value) { return ToWhole<Long>(value); }

double CDbl(const Variant& value) {
    return std::visit(Overloaded{
                          [](Empty) { return 0.0; },
                          [](Null) -> double { Raise(err::InvalidNull); },
                          [](bool b) { return b ? -1.0 : 0.0; },
                          [](const std::integral auto& n) { return static_cast<double>(n); },
                          [](float f) { return static_cast<double>(f); },
                          [](double d) { return d; },
                          [](Date d) { return d.Days; },
                          [](const String& s) { return FromText(s); },
                          [](const Ref<Object>& o) -> double { Raise(o ? err::NoSuchMember : err::ObjectNotSet); },
                          [](const auto&) -> double { Raise(err::TypeMismatch); },
                      },
                      value.Stored());
}

float CSng(const Variant& value) {
    const double number = CDbl(value);
    const auto narrow = static_cast<float>(number);
    if (std::isinf(narrow)) Raise(err::Overflow);
    return narrow;
}

bool CBool(const Variant& value) {
    if (value.Is<String>()) {
        if (EqualsIgnoringCase(value.As<String>(), "true")) return true;
        if (EqualsIgnoringCase(value.As<String>(), "false")) return false;
    }
    return CDbl(value) != 0;
}

String CStr(double value) { return FloatText(value, 15); }

String CStr(float value) { return FloatText(static_cast<double>(value), 7); }

String CStr(std::int64_t value) {
    std::array<char, 24> digits;
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
    return String(digits.data(), end);
}

static String DateText(Date date) {
    using enum Locale::Order;
    const double time = date.Days - std::trunc(date.Days);
    const Locale::Order order = UserLocale().DateOrder;
    const char* day = order == MonthDayYear ? "m/d/yyyy" : order == DayMonthYear ? "dd/mm/yyyy" : "yyyy-mm-dd";
    if (std::trunc(date.Days) == 0) return FormatDate(date, "hh:nn:ss");
    return FormatDate(date, time == 0 ? String(day) : String(day) + " hh:nn:ss");
}

String CStr(const Variant& value) {
    return std::visit(Overloaded{
                          [](Empty) { return String(); },
                          [](Null) -> String { Raise(err::InvalidNull); },
                          [](bool b) { return CStr(b); },
                          [](const std::integral auto& n) { return CStr(static_cast<std::int64_t>(n)); },
                          [](float f) { return CStr(f); },
                          [](double d) { return CStr(d); },
                          [](Date d) { return DateText(d); },
                          [](const String& s) { return s; },
                          [](const Ref<Object>& o) -> String { Raise(o ? err::NoSuchMember : err::ObjectNotSet); },
                          [](const auto&) -> String { Raise(err::TypeMismatch); },
                      },
                      value.Stored());
}

std::optional<Date> ParseDate(std::string_view whole) {
    const std::string_view text = WithoutSpace(whole);
    if (const auto iso = ParseIso(text)) return iso;
    std::vector<Word> words;
    if (!SplitWords(text, words)) return {};
    DateParts parts{1899, 12, 30, 0, 0, 0};
    const std::size_t all = words.size();
    if (!TakeTime(words, parts)) return {};
    if (words.empty()) return DateFrom(parts);
    if (words.size() < all && words.back().behind == ',') return {};
    for (const Word& word : words)
        if (word.behind == ':') return {};
    const bool numeric = std::all_of(words.begin(), words.end(), [](const Word& w) { return w.digits > 0; });
    if (numeric ? words.size() != 3 || !TakeNumericDay(words, parts) : !TakeNamedDay(words, parts)) return {};
    return DateFrom(parts);
}

bool IsDate(const Variant& value) {
    if (value.Is<Date>()) return true;
    return value.Is<String>() && ParseDate(value.As<String>()).has_value();
}

Date CDate(const Variant& value) {
    if (value.Is<Date>()) return value.As<Date>();
    if (value.Is<String>())
        if (const auto date = ParseDate(value.As<String>())) return *date;
    const Date date{CDbl(value)};
    if (!(date.Days > FirstDay - 1 && date.Days < LastDay + 1)) Raise(err::Overflow);
    return date;
}

double Val(std::string_view whole) {
    String text;
    for (const char c : whole)
        if (!std::strchr(" \t\r\n", c) || c == '\0') text += c;
    if (IsRadix(text)) {
        std::size_t used = 0;
        return FromRadix(text, used);
    }
    String plain;
    std::size_t at = 0;
    const bool negative = !text.empty() && text[0] == '-';
    if (!text.empty() && (text[0] == '-' || text[0] == '+')) ++at;
    bool point = false;
    for (; at < text.size() && (IsDigit(text[at]) || (text[at] == '.' && !point)); ++at) {
        point = point || text[at] == '.';
        plain += text[at];
    }
    if (plain.empty() || plain == ".") return 0;
    if (at < text.size() && std::strchr("eEdD", text[at]) && text[at] != '\0') {
        String exponent = "e";
        if (++at < text.size() && (text[at] == '-' || text[at] == '+')) exponent += text[at] == '-' ? "-" : "", ++at;
        const std::size_t sign = exponent.size();
        while (at < text.size() && IsDigit(text[at])) exponent += text[at++];
        if (exponent.size() > sign) plain += exponent;
    }
    const double number = FromDecimal(plain);
    return negative ? -number : number;
}

String Format(const Variant& value, std::string_view pattern) {
    if (value.Is<Null>()) return {};
    if (value.Is<Date>()) return FormatDate(value.As<Date>(), pattern);
    if (value.Is<String>()) {
        const auto date = ParseDate(value.As<String>());
        return date ? FormatDate(*date, pattern) : value.As<String>();
    }
    return FormatDate(CDate(value), pattern);
}

const Ref<Object>& detail::ObjectOf(const Variant& value) {
    static const Ref<Object>& nothing = *new Ref<Object>;  // for calls until the process is gone
    if (value.Is<Ref<Object>>()) return value.As<Ref<Object>>();
    if (value.Is<Empty>()) return nothing;
    Raise(err::ObjectRequired);
}

}  // namespace Platform
