#pragma once

#include <atomic>
#include <filesystem>
#include <thread>

namespace TestKit {

/// Forwards one connection to a server's socket, and counts its round trips: how often the client sends after the
/// server has answered. Its own thread forwards the bytes; the destructor ends it.
class CountingProxy {
public:
    /// Listens on the socket `own` and connects to the socket `server` for the first client.
    CountingProxy(const std::filesystem::path& own, const std::filesystem::path& server);
    ~CountingProxy();
    CountingProxy(const CountingProxy&) = delete;

    /// Returns the round trips so far.
    int RoundTrips() const { return roundTrips_; }

private:
    void Forward(const std::filesystem::path& server);

    int listener_;
    std::atomic<int> roundTrips_ = 0;
    std::thread thread_;
};

}  // namespace TestKit
