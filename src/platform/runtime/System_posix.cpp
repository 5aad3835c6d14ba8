#include "platform/runtime/System.h"

#include <cstdio>
#include <langinfo.h>
#include <locale.h>
#include <sys/random.h>
#include <vector>

namespace Platform {
namespace {

/// The functions that are called when a thread ends.
struct EndsOfThread {
    ~EndsOfThread() {
        for (; !functions.empty(); functions.pop_back()) functions.back()();
    }
    std::vector<void (*)()> functions;
};

}  // namespace

std::tm LocalTime(std::time_t time) {
    std::tm local{};
    localtime_r(&time, &local);
    return local;
}

bool FillWithRandom(std::span<std::uint8_t> bytes) {
    return getrandom(bytes.data(), bytes.size(), 0) == static_cast<ssize_t>(bytes.size());
}

Locale LocaleOfUser() {
    Locale locale;
    const locale_t environment = newlocale(LC_ALL_MASK, "", nullptr);
    if (!environment) return locale;
    locale.DecimalSign = *nl_langinfo_l(RADIXCHAR, environment) == ',' ? ',' : '.';
    locale.ThousandsSign = locale.DecimalSign == ',' ? '.' : ',';
    const std::string_view order = nl_langinfo_l(D_FMT, environment);
    const auto day = order.find_first_of("de"), month = order.find('m'), year = order.find_first_of("yY");
    if (order.find_first_of("DF") == std::string_view::npos && day != order.npos && month != order.npos) {
        if (year < month && year < day)
            locale.DateOrder = Locale::Order::YearMonthDay;
        else if (day < month)
            locale.DateOrder = Locale::Order::DayMonthYear;
    }
    freelocale(environment);
    return locale;
}

void AtEndOfThread(void (*end)()) {
    thread_local EndsOfThread ends;
    ends.functions.push_back(end);
}

void ShowText(const String& text, Long) { std::fprintf(stderr, "%s\n", text.c_str()); }

}  // namespace Platform
