#include "platform/runtime/System.h"

#include "platform/runtime/Text.h"
#include "platform/runtime/WindowsApi.h"

#include <array>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <ntsecapi.h>
#include <vector>

namespace Platform {
namespace {

/// Returns a setting of the user as a text.
std::wstring Setting(LCTYPE which) {
    std::array<wchar_t, 80> text{};
    const int count = GetLocaleInfoEx(LOCALE_NAME_USER_DEFAULT, which, text.data(), static_cast<int>(text.size()));
    return {text.data(), static_cast<std::size_t>(count > 0 ? count - 1 : 0)};
}

Locale::Order OrderOf(std::wstring_view pattern) {
    const auto day = pattern.find(L'd'), month = pattern.find(L'M'), year = pattern.find(L'y');
    if (year < month && year < day) return Locale::Order::YearMonthDay;
    return day < month ? Locale::Order::DayMonthYear : Locale::Order::MonthDayYear;
}

/// Returns true if this process runs on a visible desktop; a service does not.
bool HasVisibleDesktop() {
    USEROBJECTFLAGS flags{};
    const HWINSTA station = GetProcessWindowStation();
    return station && GetUserObjectInformationW(station, UOI_FLAGS, &flags, sizeof flags, nullptr) &&
           (flags.dwFlags & WSF_VISIBLE);
}

/// Returns the name of the file that contains this code, without its folder and extension.
std::wstring NameOfThisFile() {
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<LPCWSTR>(&HasVisibleDesktop), &module);
    std::array<wchar_t, MAX_PATH> path{};
    GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size()));
    return std::filesystem::path(path.data()).stem().wstring();
}

/// Shows a message box and waits until it is closed. Returns false if none can be shown.
bool ShowBox(const String& text, Long buttons) {
    if (!HasVisibleDesktop()) return false;
    const std::u16string units = ToUtf16(text);
    return MessageBoxW(nullptr, reinterpret_cast<const wchar_t*>(units.c_str()), NameOfThisFile().c_str(),
                       static_cast<UINT>(buttons) | MB_TASKMODAL) > 0;
}

/// The slot of the functions that are called when a thread ends. The system calls them in front of the library files,
/// and of the C++ library, which has no order among the data of a thread that it destroys.
class EndsOfThread {
public:
    using Functions = std::vector<void (*)()>;
    ~EndsOfThread() { FlsFree(slot_); }
    Functions& OfThisThread() {
        auto* functions = static_cast<Functions*>(FlsGetValue(slot_));
        if (!functions) FlsSetValue(slot_, functions = new Functions);
        return *functions;
    }

private:
    static void NTAPI CallAll(void* ofThread) {
        const std::unique_ptr<Functions> functions(static_cast<Functions*>(ofThread));
        for (; !functions->empty(); functions->pop_back()) functions->back()();
    }
    DWORD slot_ = FlsAlloc(CallAll);
};

}  // namespace

std::tm LocalTime(std::time_t time) {
    std::tm local{};
    localtime_s(&local, &time);
    return local;
}

bool FillWithRandom(std::span<std::uint8_t> bytes) {
    return RtlGenRandom(bytes.data(), static_cast<ULONG>(bytes.size()));
}

Locale LocaleOfUser() {
    Locale locale;
    locale.DecimalSign = Setting(LOCALE_SDECIMAL) == L"," ? ',' : '.';
    locale.ThousandsSign = locale.DecimalSign == ',' ? '.' : ',';
    if (const std::wstring pattern = Setting(LOCALE_SSHORTDATE); !pattern.empty()) locale.DateOrder = OrderOf(pattern);
    return locale;
}

void AtEndOfThread(void (*end)()) {
    static EndsOfThread ends;
    ends.OfThisThread().push_back(end);
}

void ShowText(const String& text, Long buttons) {
    if (!ShowBox(text, buttons)) std::fprintf(stderr, "%s\n", text.c_str());
}

}  // namespace Platform
