#pragma once

#include <array>
#include <csignal>
#include <exception>

namespace Console {

/// Thrown after the user has stopped the program.
class Stopped : public std::exception {};

/// Turns SIGINT, SIGTERM and SIGHUP into a request to stop, as long as it lives.
///
/// A command that calls `Requested` between two steps can end in an orderly way. A second signal ends the program at
/// once, as without this class. A signal that the caller of the program ignores stays ignored. Only one object may
/// exist at a time; the main thread creates it.
class StopSignals {
public:
    StopSignals();
    ~StopSignals();
    StopSignals(const StopSignals&) = delete;

    /// Returns the number of the signal that arrived, 0 if none did.
    static int Requested() noexcept;

private:
    static constexpr std::array<int, 3> Signals{SIGINT, SIGTERM, SIGHUP};
    std::array<struct sigaction, Signals.size()> before_{};
};

}  // namespace Console
