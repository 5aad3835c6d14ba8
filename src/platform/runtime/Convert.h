#pragma once

#include "platform/runtime/Text.h"
#include "platform/runtime/Variant.h"

#include <optional>

/// Every conversion between the system's types, and nothing else that converts.
///
/// Three failures repeat: 13 for a value that has no form of the wanted type, 6 for a number outside
/// the type's range, 94 for a null. What depends on the user's settings (decimal sign, order of a
/// date's parts) reads `UserLocale`. Any thread may call anything here.
namespace Platform {

/// How the user's machine writes numbers and dates.
struct Locale {
    char DecimalSign = '.';
    char ThousandsSign = ',';
    enum class Order { MonthDayYear, DayMonthYear, YearMonthDay } DateOrder = Order::MonthDayYear;
};

/// The calling thread's locale: the environment's, unless `SetUserLocale` gave it another.
const Locale& UserLocale();

/// Gives the calling thread another locale, from its next conversion on.
void SetUserLocale(const Locale& locale);

/// Whole numbers. Fractions go to the nearest, a tie to the even one; true is -1; `Empty` is 0; a text
/// is read as `CDbl` reads it; a date gives its days. Raise 6, 13, 94.
Integer CInt(const Variant& value);
Long CLng(const Variant& value);

/// A double, by the same rules without the rounding. A text may have blanks around it, a sign at either
/// end, parentheses for a negative number, thousands signs, an exponent with e or d, "&H" or "&O" in
/// front; signs are the locale's. Raises 6, 13, 94.
double CDbl(const Variant& value);
float CSng(const Variant& value);

/// False for 0, true for any other number; a text may also be "True" or "False". Raises 13, 94.
bool CBool(const Variant& value);

/// A text. Whole numbers by their digits, floats as `CStr(double)`, booleans "True" or "False", dates
/// in the locale's short form with the time where there is one. Raises 13, 94.
String CStr(const Variant& value);

/// The decimal text of a float: up to 15 (`float`: 7) significant digits without trailing zeros, the
/// locale's decimal sign, "0" in front of it; 1E+15 and beyond, and what would need more decimals than
/// that, with an exponent of two digits.
String CStr(double value);
String CStr(float value);

/// The decimal digits, "-" in front if negative.
String CStr(std::int64_t value);
inline String CStr(Long value) { return CStr(static_cast<std::int64_t>(value)); }

/// "True" or "False".
inline String CStr(bool value) { return value ? "True" : "False"; }

/// A date. Numbers are days; a text is read as `ParseDate` reads it, or else as a number of days.
/// Raises 6 for a number outside the years 100 to 9999, 13, 94.
Date CDate(const Variant& value);

/// The date that a text spells, if it does.
///
/// "yyyy-mm-dd" with or without " hh:nn" or " hh:nn:ss" in every locale; else three numbers separated
/// by "/", "-", "." or "," in the locale's order, or, where that gives no day, in another order that
/// does; a month's English name or its first three letters may stand for its number. A time alone is a
/// time of day 0. "AM" and "PM" count. Two-digit years 0 to 29 lie in 2000, 30 to 99 in 1900.
std::optional<Date> ParseDate(std::string_view text);

/// True for a date and for a text that `ParseDate` reads; false for anything else, never a failure.
bool IsDate(const Variant& value);

/// The number at the head of a text: blanks and line breaks are skipped anywhere, then a sign, digits,
/// "." as the decimal sign in every locale, an exponent, or "&H" or "&O" digits. 0 when there is none.
double Val(std::string_view text);

/// A date or a text that spells one by a pattern (see `FormatDate`), the empty text for a null, any
/// other text as it stands. Numbers count as days. Raises 5, 13.
String Format(const Variant& value, std::string_view pattern);

/// The value as a member of type `T` takes it: the conversion above that belongs to the type. An object
/// that isn't a `T` raises 13.
template <class T>
T To(Variant value);

namespace detail {
template <class T>
struct IsRef : std::false_type {};
template <class T>
struct IsRef<Ref<T>> : std::true_type {
    using Target = T;
};
const Ref<Object>& ObjectOf(const Variant& value);
}  // namespace detail

template <class T>
T To(Variant value) {
    if constexpr (std::is_same_v<T, Variant>) {
        return value;
    } else if constexpr (std::is_enum_v<T>) {
        return static_cast<T>(CLng(value));
    } else if constexpr (std::is_same_v<T, bool>) {
        return CBool(value);
    } else if constexpr (std::is_same_v<T, Integer>) {
        return CInt(value);
    } else if constexpr (std::is_same_v<T, Long>) {
        return CLng(value);
    } else if constexpr (std::is_same_v<T, float>) {
        return CSng(value);
    } else if constexpr (std::is_same_v<T, double>) {
        return CDbl(value);
    } else if constexpr (std::is_same_v<T, Date>) {
        return CDate(value);
    } else if constexpr (std::is_same_v<T, String>) {
        return value.Is<String>() ? String(value.Take<String>()) : CStr(value);
    } else {
        static_assert(detail::IsRef<T>::value, "a type of the system");
        const Ref<Object>& object = detail::ObjectOf(value);
        auto* target = dynamic_cast<typename detail::IsRef<T>::Target*>(object.Get());
        if (object && !target) Raise(err::TypeMismatch);
        return T(target);
    }
}

}  // namespace Platform
