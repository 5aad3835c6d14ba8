#pragma once

#include <array>
#include <csignal>

namespace Console {

/// Turns SIGINT, SIGTERM and SIGHUP into a request to stop, as long as it lives.
///
/// Work that asks `Requested` between two steps can end in order. A second signal ends the program at once,
/// as without this class. A signal that the program's caller has set to be ignored stays ignored. One object
/// at a time, made by the main thread.
class StopSignals {
public:
    StopSignals();
    ~StopSignals();
    StopSignals(const StopSignals&) = delete;

    /// The number of the signal that arrived, 0 if none did.
    static int Requested() noexcept;

private:
    static constexpr std::array<int, 3> Signals{SIGINT, SIGTERM, SIGHUP};
    std::array<struct sigaction, Signals.size()> before_{};
};

}  // namespace Console
