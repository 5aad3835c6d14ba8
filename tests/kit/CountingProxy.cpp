#include "kit/CountingProxy.h"

#include <array>
#include <cstring>
#include <poll.h>
#include <stdexcept>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <utility>

namespace TestKit {
namespace {

sockaddr_un AddressOf(const std::filesystem::path& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::string text = path.string();
    if (text.size() >= sizeof address.sun_path) throw std::runtime_error("the path of the socket is too long");
    std::memcpy(address.sun_path, text.c_str(), text.size() + 1);
    return address;
}

/// Copies what can be read from one socket to the other; returns false at the end.
bool Copy(int from, int to) {
    std::array<char, 65536> bytes{};
    const ssize_t count = read(from, bytes.data(), bytes.size());
    for (ssize_t done = 0; done < count;) {
        const ssize_t written = write(to, bytes.data() + done, static_cast<std::size_t>(count - done));
        if (written <= 0) return false;
        done += written;
    }
    return count > 0;
}

}  // namespace

CountingProxy::CountingProxy(const std::filesystem::path& own, const std::filesystem::path& server)
    : listener_(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    const sockaddr_un address = AddressOf(own);
    if (bind(listener_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 || listen(listener_, 1) != 0)
        throw std::runtime_error("the socket can't be made");
    thread_ = std::thread([this, server] { Forward(server); });
}

CountingProxy::~CountingProxy() {
    shutdown(listener_, SHUT_RDWR);
    thread_.join();
    close(listener_);
}

void CountingProxy::Forward(const std::filesystem::path& server) {
    const int client = accept(listener_, nullptr, nullptr);
    if (client < 0) return;
    const int real = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const sockaddr_un address = AddressOf(server);
    bool open = connect(real, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    bool answered = true;
    while (open) {
        std::array<pollfd, 2> ends{{{client, POLLIN, 0}, {real, POLLIN, 0}}};
        if (poll(ends.data(), ends.size(), -1) < 0) break;
        if (ends[1].revents != 0) {
            open = Copy(real, client);
            answered = true;
        } else if (ends[0].revents != 0) {
            if (std::exchange(answered, false)) ++roundTrips_;
            open = Copy(client, real);
        }
    }
    close(real);
    close(client);
}

}  // namespace TestKit
