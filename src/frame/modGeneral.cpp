#include "frame/modGeneral.h"

#include "platform/runtime/Random.h"
#include "platform/runtime/Services.h"

#include <cmath>

namespace OXClass {

using namespace Platform;

thread_local bool bEscapeBackslash = false;
thread_local String sDicomRootUID;

Escaped FixSqlString(std::string_view s) {
    const std::string_view special = bEscapeBackslash ? "'\\" : "'";
    String result;
    result.reserve(s.size());
    std::size_t from = 0;
    for (std::size_t at; (at = s.find_first_of(special, from)) != std::string_view::npos; from = at + 1) {
        result.append(s, from, at + 1 - from);
        result += s[at];
    }
    result.append(s, from);
    return Escaped(std::move(result));
}

Escaped UCase(const Escaped& text) { return Escaped(Platform::UCase(text.Text())); }

namespace {

/// False for a date that can't be formatted, which only those near the ends of the calendar can be.
bool HasText(Date date) {
    if (date.Days >= FirstDay && date.Days < LastDay) return true;
    try {
        CStr(Variant(date));
        return true;
    } catch (const Error&) {
        return false;
    }
}

}  // namespace

Variant NzValue(Variant v) {
    constexpr Integer zero = 0;
    if (v.Is<String>()) return v.As<String>().find_first_not_of(' ') == String::npos ? Variant(zero) : v;
    if (v.Is<Null>() || v.Is<Empty>() || v.Is<Ref<Object>>() || v.Is<std::vector<String>>()) return zero;
    if (v.Is<Date>() && !HasText(v.As<Date>())) return zero;
    return v;
}

String LowWordText(Long v, Integer width) {
    String digits = std::to_string(static_cast<std::uint32_t>(v) & 0xFFFF);
    if (digits.size() < static_cast<std::size_t>(width)) digits.insert(0, width - digits.size(), '0');
    return digits;
}

String HighWordText(Long v, Integer width) {
    const auto upper = static_cast<Long>(static_cast<std::uint32_t>(v) & 0xFFFF0000U);
    return LowWordText(CLng(upper / 65536.0), width);
}

namespace {

/// Returns a random draw scaled to a whole number from 0 to 100000.
Long Scaled(float draw) { return CLng(static_cast<double>(draw) * 100000.0); }

Long Sum(Long a, Long b) {
    Long sum = 0;
    if (__builtin_add_overflow(a, b, &sum)) Raise(err::Overflow);
    return sum;
}

String Suffix() {
    const std::uint64_t fileTime = SystemFileTime();
    const auto ftLow = static_cast<Long>(static_cast<std::uint32_t>(fileTime));
    const auto ftHigh = static_cast<Long>(static_cast<std::uint32_t>(fileTime >> 32));
    Randomize();
    const float r1 = Rnd(), r2 = Rnd();
    const auto t1 = static_cast<Long>(TickCount()), t2 = static_cast<Long>(TickCount());
    const float r3 = Rnd();
    constexpr Long shift = 0x146BF4, marker = 0x10000000;
    const Long shifted = Sum(ftHigh, shift);
    const String lead = CStr(CLng(static_cast<double>(r1) * 8.0 + 1.0));
    return "." + lead + HighWordText(ftLow, 5) + LowWordText(ftLow, 5) + LowWordText(shifted, 5) +
           HighWordText(shifted | marker, 5) + LowWordText(Scaled(r2), 5) + HighWordText(t1, 5) + LowWordText(t2, 5) +
           LowWordText(Scaled(r3), 5);
}

}  // namespace

String MakeUIDSuffix() {
    constexpr Long longest = 64;
    const String suffix = Suffix();
    if (Len(sDicomRootUID) + Len(suffix) <= longest) return sDicomRootUID + suffix;
    return sDicomRootUID + "." + Right(suffix, longest - (Len(sDicomRootUID) + 1));
}

}  // namespace OXClass
