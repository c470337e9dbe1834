#include "tests/system/notify_socket.hpp"

#include <algorithm>
#include <array>
#include <stdexcept>

#include <sys/socket.h>
#include <sys/un.h>

#include <poll.h>
#include <unistd.h>

namespace xpon::test {

NotifySocket::NotifySocket(const std::string& path) : descriptor_(socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0)) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::ranges::copy(path, address.sun_path);
    if (bind(descriptor_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        throw std::runtime_error("cannot bind " + path);
    }
}

NotifySocket::~NotifySocket() {
    close(descriptor_);
}

std::optional<std::string> NotifySocket::next(std::chrono::milliseconds limit) {
    pollfd entry{.fd = descriptor_, .events = POLLIN, .revents = 0};
    if (poll(&entry, 1, static_cast<int>(limit.count())) <= 0) {
        return std::nullopt;
    }
    std::array<char, 4096> buffer{};
    const auto count = recv(descriptor_, buffer.data(), buffer.size(), 0);
    return std::string(buffer.data(), static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
}

} // namespace xpon::test
