#include "platform/runtime/Services.h"

#include "platform/runtime/System.h"

#include <atomic>
#include <chrono>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <thread>

namespace Platform {
namespace {

namespace fs = std::filesystem;

Date MachineNow() {
    const std::tm t = LocalTime(std::time(nullptr));
    return DateFrom({t.tm_year + 1900, t.tm_mon + 1, t.tm_mday, t.tm_hour, t.tm_min, std::min(t.tm_sec, 59)});
}

float MachineTimer() {
    using namespace std::chrono;
    const system_clock::time_point now = system_clock::now();
    const std::tm t = LocalTime(system_clock::to_time_t(now));
    const duration<double> fraction = now - floor<seconds>(now);
    return static_cast<float>(t.tm_hour * 3600 + t.tm_min * 60 + t.tm_sec + fraction.count());
}

std::uint32_t MachineTickCount() {
    using namespace std::chrono;
    return static_cast<std::uint32_t>(duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count());
}

std::uint64_t MachineFileTime() {
    using namespace std::chrono;
    using Steps = duration<std::uint64_t, std::ratio<1, 10'000'000>>;
    constexpr std::uint64_t stepsFrom1601To1970 = 116'444'736'000'000'000;
    static std::atomic<std::uint64_t> last{0};
    const std::uint64_t now =
        duration_cast<Steps>(system_clock::now().time_since_epoch()).count() + stepsFrom1601To1970;
    std::uint64_t before = last.load();
    std::uint64_t next;
    do next = std::max(now, before + 1);
    while (!last.compare_exchange_weak(before, next));
    return next;
}

Long MachineGuid(Guid& guid) {
    std::array<std::uint8_t, 16> bytes{};
    if (!FillWithRandom(bytes)) return -1;
    bytes[7] = static_cast<std::uint8_t>((bytes[7] & 0x0F) | 0x40);  // version 4: random
    bytes[8] = static_cast<std::uint8_t>((bytes[8] & 0x3F) | 0x80);  // the usual variant
    std::memcpy(&guid.Data1, &bytes[0], 4);
    std::memcpy(&guid.Data2, &bytes[4], 2);
    std::memcpy(&guid.Data3, &bytes[6], 2);
    std::memcpy(guid.Data4.data(), &bytes[8], 8);
    return 0;
}

void MachineDelete(const String& path) {
    std::error_code failure;
    const fs::file_status status = fs::status(path, failure);
    if (!fs::is_regular_file(status)) Raise(err::FileNotFound);
    const auto writable = fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write;
    if ((status.permissions() & writable) == fs::perms::none) Raise(err::PermissionDenied);
    if (!fs::remove(path, failure)) Raise(failure ? err::PermissionDenied : err::FileNotFound);
}

bool MachineFileExists(const String& path) {
    std::error_code failure;
    return fs::is_regular_file(path, failure);
}

}  // namespace

Host::Host()
    : Now(MachineNow),
      Timer(MachineTimer),
      TickCount(MachineTickCount),
      SystemFileTime(MachineFileTime),
      CreateGuid(MachineGuid),
      Sleep([](double seconds) { std::this_thread::sleep_for(std::chrono::duration<double>(seconds)); }),
      DoEvents([] {}),
      MsgBox(ShowText),
      FileExists(MachineFileExists),
      DeleteFile(MachineDelete) {}

Host& TheHost() {
    static Host& host = *new Host;  // for calls until the process is gone
    return host;
}

Date Now() { return TheHost().Now(); }
float Timer() { return TheHost().Timer(); }
std::uint32_t TickCount() { return TheHost().TickCount(); }
std::uint64_t SystemFileTime() { return TheHost().SystemFileTime(); }
Long CreateGuid(Guid& guid) { return TheHost().CreateGuid(guid); }
void Sleep(double seconds) { TheHost().Sleep(seconds); }
void DoEvents() { TheHost().DoEvents(); }
void MsgBox(const String& prompt, Long buttons) { TheHost().MsgBox(prompt, buttons); }
bool FileExists(const String& path) { return TheHost().FileExists(path); }
void DeleteFile(const String& path) { TheHost().DeleteFile(path); }

}  // namespace Platform
