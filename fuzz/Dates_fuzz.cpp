#include "Check.h"

#include "platform/runtime/Convert.h"

using namespace Platform;

/// Any text is a date or none, in every locale; a date that was read lies in the calendar, and its own
/// text in the unambiguous form reads as the same second.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const String text(reinterpret_cast<const char*>(data), size);
    using enum Locale::Order;
    for (const Locale::Order order : {MonthDayYear, DayMonthYear, YearMonthDay}) {
        SetUserLocale({'.', ',', order});
        const auto date = ParseDate(text);
        CHECK(IsDate(text) == date.has_value());
        if (!date) continue;
        const String written = FormatDate(*date, "yyyy-mm-dd hh:nn:ss");
        const auto again = ParseDate(written);
        CHECK(again && FormatDate(*again, "yyyy-mm-dd hh:nn:ss") == written);
        FormatDate(*date, text);
    }
    return 0;
}
