#pragma once

#include "platform/runtime/Text.h"
#include "platform/runtime/Variant.h"

#include <optional>

/// All conversions between the system's types.
///
/// Three failures are common to them: 13 for a value that can't be converted to the type, 6 for a number outside the
/// range of the type, 94 for a null. Objects have no value: a conversion of an object raises 438, of a null reference
/// 91, of a list of texts 13. What depends on the user's settings (decimal sign, order of the parts of a date) reads
/// `UserLocale`. No function changes its argument. Any thread may call the functions.
namespace Platform {

/// How numbers and dates are written on the user's machine. A new one is that of the United States.
struct Locale {
    char DecimalSign = '.';    ///< "." or ","
    char ThousandsSign = ',';  ///< accepted in the whole part of a text, and never written
    /// The order of the parts of a date in a text, which also selects the form in which `CStr` writes a date:
    /// m/d/yyyy, dd/mm/yyyy, yyyy-mm-dd.
    enum class Order { MonthDayYear, DayMonthYear, YearMonthDay } DateOrder = Order::MonthDayYear;
};

/// Returns the locale of the calling thread: the one of the environment, unless `SetUserLocale` was called. A thread
/// reads the environment at its first call; a locale that the system does not know is replaced by the default of
/// `Locale`. The reference is valid until the thread ends.
const Locale& UserLocale();

/// Sets the locale of the calling thread, for its conversions from now on. Other threads keep theirs.
void SetUserLocale(const Locale& locale);

/// Convert to a whole number. Fractions are rounded to the nearest number, halves to the even one. True is -1, `Empty`
/// is 0, a text is read as by `CDbl`, a date is its number of days. An infinite number and NaN raise 6. Raise 6,
/// 13, 94.
Integer CInt(const Variant& value);
Long CLng(const Variant& value);

/// Convert to a floating-point number, by the same rules without rounding. A text may have blanks around it, a sign at
/// either end, parentheses for a negative number, thousands signs, an exponent with e or d, or the prefix "&H" or "&O";
/// decimal and thousands signs are those of the locale. Raise 6, 13, 94.
double CDbl(const Variant& value);
float CSng(const Variant& value);

/// Returns false for 0 and true for any other number; a text may also be "True" or "False", in any case and without
/// blanks around it. Raises 13, 94, and 6 for a text with too large a number.
bool CBool(const Variant& value);

/// Returns the text of a value: whole numbers as digits, floats as by `CStr(double)`, booleans as "True" or "False",
/// dates in the short form of the locale, with the time unless that is midnight; a date of day 0 is its time alone.
/// `Empty` is the empty text. Raises 13, 94, 6 for an infinite number, and 5 for a date outside the years 100 to 9999.
String CStr(const Variant& value);

/// Returns the decimal text of a number: up to 15 (`float`: 7) significant digits without trailing zeros, with the
/// decimal sign of the locale and a "0" in front of it. Numbers from 1E+15, and those that would need more decimals,
/// have an exponent of at least two digits. The limit of a `float` is 1E+07. Raises 6 for an infinite number and for
/// NaN.
String CStr(double value);
String CStr(float value);

/// Returns the decimal digits, with "-" in front of a negative number.
String CStr(std::int64_t value);
/// The same for the whole numbers of the system. Neither depends on the locale, and neither raises.
inline String CStr(Long value) { return CStr(static_cast<std::int64_t>(value)); }

/// Returns "True" or "False".
inline String CStr(bool value) { return value ? "True" : "False"; }

/// Converts to a date. A number is a number of days; a text is read as by `ParseDate`, or else as a number of days.
/// `Empty` is the zero date; a date is returned unchanged and unchecked. Raises 6 for a number outside the years 100 to
/// 9999, 13, 94.
Date CDate(const Variant& value);

/// Returns the date that a text contains, or `std::nullopt` if the text is not a date. Never raises.
///
/// "yyyy-mm-dd" with or without " hh:nn" or " hh:nn:ss" is accepted in every locale. Otherwise the text has three
/// numbers, separated by "/", "-", "." or ",", in the order of the locale, or in another order where that one is not a
/// valid day. The English name of a month or its first three letters may replace its number. A time alone is a time of
/// day 0. "AM" and "PM" are accepted. Two-digit years from 0 to 29 are in 2000, from 30 to 99 in 1900. A named month
/// and a day without a year are of the current year. White space around the text is ignored.
std::optional<Date> ParseDate(std::string_view text);

/// Returns true for a date and for a text that `ParseDate` accepts, and false for anything else: also for a number, and
/// for the text of one, which `CDate` accepts. Never raises.
bool IsDate(const Variant& value);

/// Returns the number at the beginning of a text, 0 if there is none: a sign, digits, "." as decimal sign in every
/// locale, and an exponent, or digits with the prefix "&H" or "&O". Blanks, tabs and line breaks are ignored
/// everywhere; what follows the number is ignored. Digits with a prefix are a signed number of 16 bits if they fit, so
/// that "&HFFFF" is -1; otherwise, or with "&" behind them, one of 32 bits: "&HFFFF&" is 65535. Raises 6 for a number
/// that is too large.
double Val(std::string_view text);

/// Returns a date, or a text that is a date, formatted by a pattern (see `FormatDate`); an empty text for a null; any
/// other text unchanged. Numbers are numbers of days, and `Empty` is day 0. Raises 5 for a date outside the years 100
/// to 9999, 6 for a number outside them, 13, and 438 or 91 for an object.
String Format(const Variant& value, std::string_view pattern);

/// Returns the value converted to type `T` by the conversion above for this type; a `Variant` unchanged. An enumeration
/// is converted as a `Long` and may receive a number that it does not name. Another type does not compile.
///
/// For a `Ref`, `Empty` and a null reference become null. An object of another component becomes an adapter
/// (`Object::AdaptedAs`) if there is one for the class. Raises 13 for an object of another class, 424 for a value that
/// is not an object. Otherwise raises as the conversion.
template <class T>
T To(Variant value);

namespace detail {
/// `IsRef<T>::value` is true if `T` is a `Ref`; `IsRef<T>::Target` is then the class that it refers to.
template <class T>
struct IsRef : std::false_type {};
template <class T>
struct IsRef<Ref<T>> : std::true_type {
    using Target = T;
};

/// Returns the object that a variant holds, which may be null; null for `Empty`. Raises 424 for any other value. The
/// reference is valid as long as the variant is unchanged.
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
        using Target = typename detail::IsRef<T>::Target;
        auto* target = dynamic_cast<Target*>(object.Get());
        if (target || !object) return T(target);
        const Ref<Object> adapter = object->AdaptedAs(Target::ClassName);
        target = dynamic_cast<Target*>(adapter.Get());
        if (!target) Raise(err::TypeMismatch);
        return T(target);
    }
}

}  // namespace Platform
