#pragma once

#include "platform/runtime/Convert.h"

#include <ctime>
#include <span>

/// What the runtime asks the operating system for. Each system has a source file of its own, `System_posix.cpp` and
/// `System_windows.cpp`. Any thread may call.
namespace Platform {

/// Returns a time in the time zone of the process.
std::tm LocalTime(std::time_t time);

/// Fills `bytes` with random bytes. Returns false if the system has none; the content is then unspecified.
bool FillWithRandom(std::span<std::uint8_t> bytes);

/// Returns the signs of numbers and the order of dates that the user has chosen. What the system can't tell is as in a
/// new `Locale`.
Locale LocaleOfUser();

/// Calls a function when the calling thread ends, once for each call; the last one first. The thread's own data can
/// still be used then.
void AtEndOfThread(void (*end)());

/// Shows a text where no program has installed a message box: as `Host()` says.
void ShowText(const String& text, Long buttons);

}  // namespace Platform
