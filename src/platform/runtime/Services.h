#pragma once

#include "platform/runtime/Date.h"
#include "platform/runtime/Object.h"

#include <array>
#include <functional>

/// The services that a program provides to the classes: clock, counters, identifiers, message boxes, pending messages,
/// files.
///
/// Each service is one function here and one member of `Host`, which a program or a test may replace. A program
/// replaces services when it starts, before other threads use them. Any thread may call the functions.
namespace Platform {

/// A globally unique identifier by its fields.
struct Guid {
    std::uint32_t Data1 = 0;
    std::uint16_t Data2 = 0;
    std::uint16_t Data3 = 0;
    std::array<std::uint8_t, 8> Data4{};
};

/// The services as replaceable functions; each member has the contract of the function of the same name below.
struct Host {
    std::function<Date()> Now;
    std::function<float()> Timer;
    std::function<std::uint32_t()> TickCount;
    std::function<std::uint64_t()> SystemFileTime;
    std::function<Long(Guid&)> CreateGuid;
    std::function<void(double)> Sleep;
    std::function<void()> DoEvents;
    std::function<void(const String&, Long)> MsgBox;
    std::function<bool(const String&)> FileExists;
    std::function<void(const String&)> DeleteFile;

    /// Sets every member to the service of the operating system, `DoEvents` to a function that does nothing.
    Host();
};

/// Returns the services that this process uses, for reading and replacing. The reference is valid until the process
/// ends. A member that is replaced while another thread calls it is a data race.
Host& TheHost();

/// Returns the local time in whole seconds.
Date Now();

/// Returns the seconds since local midnight, with a fraction.
float Timer();

/// Returns the milliseconds of a counter that increases and wraps to 0 after 49 days.
std::uint32_t TickCount();

/// Returns the time in UTC as the number of 100-nanosecond steps since 1601-01-01. Two calls in a process never return
/// the same number.
std::uint64_t SystemFileTime();

/// Assigns a new random identifier to `guid` and returns 0. Returns another number if the system has none.
Long CreateGuid(Guid& guid);

/// Suspends the calling thread for this number of seconds.
void Sleep(double seconds);

/// Lets the program handle its pending messages. Does nothing where the program installed no function for it.
void DoEvents();

/// Shows a text in a message box with an OK button, and waits until it is closed. Where the program installed no
/// function for it, the text is written to standard error and the call returns at once.
void MsgBox(const String& prompt, Long buttons = 0);

/// Returns true if a file of this name exists; false for a folder. Never raises.
bool FileExists(const String& path);

/// Deletes a file. Raises 53 if it does not exist, 70 if it is read-only or may not be deleted; it then still exists.
void DeleteFile(const String& path);

}  // namespace Platform
