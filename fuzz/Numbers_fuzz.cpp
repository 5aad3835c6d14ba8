#include "Check.h"

#include "platform/runtime/Convert.h"

#include <cmath>

using namespace Platform;

/// What a text gives as a number, or a mark for each of the two failures that it may have.
template <class Read>
static double Outcome(Read read) {
    try {
        return static_cast<double>(read());
    } catch (const Error& failure) {
        CHECK(failure.Number == err::TypeMismatch || failure.Number == err::Overflow);
        return std::nan("");
    }
}

/// Any text is a number or fails with 13 or 6; the whole numbers agree with the double; a double's text in
/// a locale reads back as that double to 15 digits.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const String text(reinterpret_cast<const char*>(data), size);
    for (const char sign : {'.', ','}) {
        SetUserLocale({sign, sign == '.' ? ',' : '.', Locale::Order::MonthDayYear});
        const double number = Outcome([&] { return CDbl(text); });
        const double whole = Outcome([&] { return CLng(text); });
        Outcome([&] { return CInt(text); });
        Outcome([&] { return CSng(text); });
        Outcome([&] { return Val(text); });
        Outcome([&] { return CDate(text).Days; });
        CHECK(std::isnan(whole) || whole == std::nearbyint(number));
        if (std::isnan(number)) continue;
        const double again = CDbl(CStr(number));
        CHECK(std::fabs(again - number) <= std::fabs(number) * 1e-14);
    }
    return 0;
}
