#pragma once

#include "platform/runtime/Date.h"
#include "platform/runtime/Object.h"

#include <array>
#include <functional>

/// The services that a program provides to the classes: clock, counters, identifiers, message boxes, pending messages,
/// files.
///
/// Each service is one function here and one member of `Host`, which a program or a test may replace. A program
/// replaces services when it starts, before other threads use them. Any thread may call the functions. What a replaced
/// service throws reaches the caller of the function; the services of the operating system throw only where it is said.
namespace Platform {

/// A globally unique identifier by its fields: the same fields as `GUID` of the COM interface, for code that does not
/// use that. A new one is all zero.
struct Guid {
    std::uint32_t Data1 = 0;
    std::uint16_t Data2 = 0;
    std::uint16_t Data3 = 0;
    std::array<std::uint8_t, 8> Data4{};
};

/// The services as replaceable functions; each member has the contract of the function of the same name below. No
/// member may be empty: a call of an empty one throws `std::bad_function_call`. A function that replaces a service is
/// called on the thread that needs the service, and may be called by several threads at once.
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

    /// Sets every member to the service of the operating system, `DoEvents` to a function that does nothing, `MsgBox`
    /// to one that writes to standard error; on Windows it shows the system's message box, unless the process has no
    /// visible desktop, as a service. `TheHost() = Host()` restores these services.
    Host();
};

/// Returns the services that this process uses, for reading and replacing. The reference is valid until the process
/// ends. A member that is replaced while another thread calls it is a data race.
Host& TheHost();

/// Returns the local time in whole seconds, in the time zone of the process. It repeats an hour when summer time ends.
Date Now();

/// Returns the seconds since local midnight, with a fraction: from 0 up to 86400. As a 32-bit float it has steps of
/// about a hundredth of a second late in the day.
float Timer();

/// Returns the milliseconds of a counter that increases and wraps to 0 after 49 days. Changes of the clock don't affect
/// it. Only differences of two values have a meaning, computed without sign.
std::uint32_t TickCount();

/// Returns the time in UTC as the number of 100-nanosecond steps since 1601-01-01. Two calls in a process never return
/// the same number, also on several threads: each returns more than the one before, also if the clock is set back.
std::uint64_t SystemFileTime();

/// Assigns a new random identifier (version 4) to `guid` and returns 0. Returns another number if the system has none;
/// `guid` is then unchanged.
Long CreateGuid(Guid& guid);

/// Suspends the calling thread for at least this number of seconds; returns at once for 0 and for a negative number.
void Sleep(double seconds);

/// Lets the program handle its pending messages. Does nothing where the program installed no function for it. During
/// the call the program may call any object of the thread, also one whose operation is running.
void DoEvents();

/// Shows a text in a message box with an OK button, and waits until it is closed. `buttons` is passed to the program's
/// function. Where the program installed no function for it, the text is shown as `Host()` says; a text on standard
/// error has a line end, and the call returns at once.
void MsgBox(const String& prompt, Long buttons = 0);

/// Returns true if a file of this name exists, also through a symbolic link; false for a folder, and for a name that
/// the system can't look up. A relative name is relative to the current folder of the process. Never raises.
bool FileExists(const String& path);

/// Deletes a file; of a symbolic link to a file it deletes the link. Raises 53 if it does not exist or is not a regular
/// file, 70 if it is read-only or the system refuses to delete it; the file then still exists.
/// It is not moved to a wastebasket.
void DeleteFile(const String& path);

}  // namespace Platform
