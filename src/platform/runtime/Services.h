#pragma once

#include "platform/runtime/Date.h"
#include "platform/runtime/Object.h"

#include <array>
#include <functional>

/// What the host of a program gives to the classes: clock, counters, identifiers, text boxes, pending
/// messages, files.
///
/// Each is one function here and one member of `Host`, which a program or a test replaces. Replacing is
/// for the start of a program, before other threads call in; the functions themselves may be called
/// from any thread.
namespace Platform {

/// A globally unique identifier by its fields.
struct Guid {
    std::uint32_t Data1 = 0;
    std::uint16_t Data2 = 0;
    std::uint16_t Data3 = 0;
    std::array<std::uint8_t, 8> Data4{};
};

/// The host's services; each member has the meaning of the function of its name below.
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

    /// The machine's own services.
    Host();
};

/// The services in force in this process.
Host& TheHost();

/// The local time, whole seconds.
Date Now();

/// Seconds since local midnight, with a fraction; 0 again at midnight.
float Timer();

/// Milliseconds of a counter that only goes up and wraps after 49 days.
std::uint32_t TickCount();

/// The time in UTC, counted in steps of 100 nanoseconds since 1601-01-01. No two calls in a process
/// give the same count.
std::uint64_t SystemFileTime();

/// Fills `guid` with a new random identifier and gives 0, or another number if there is none.
Long CreateGuid(Guid& guid);

/// Lets the calling thread rest for so many seconds.
void Sleep(double seconds);

/// Lets the program handle its pending messages. Does nothing where the program has no pump.
void DoEvents();

/// Shows a text with one OK button and waits for it. Without a desktop, the text goes to standard error
/// and the call returns at once. Never raises.
void MsgBox(const String& prompt, Long buttons = 0);

/// True if a file (no folder) of this name exists; never raises.
bool FileExists(const String& path);

/// Deletes a file. Raises 53 if there is none, 70 if it is read-only or may not be deleted.
void DeleteFile(const String& path);

}  // namespace Platform
