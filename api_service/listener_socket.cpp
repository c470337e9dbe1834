#include "api_service/listener_socket.hpp"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <stdexcept>
#include <utility>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

#include <arpa/inet.h>
#include <fcntl.h>
#include <fmt/format.h>
#include <netinet/in.h>
#include <netinet/tcp.h>

namespace xpon::api_service {
namespace {

constexpr int backlog = 32;

/// `status` of a system call, or an exception with `text`, whose {} is errno.
int checked(int status, fmt::format_string<int&> text) {
    if (status < 0) {
        int cause = errno;
        throw std::runtime_error(fmt::format(text, cause));
    }
    return status;
}

core::UniqueFd open_stream_socket(int family) {
    return core::UniqueFd(checked(::socket(family, SOCK_STREAM | SOCK_CLOEXEC, 0), "Unable to create socket: {}"));
}

core::UniqueFd open_bound(const IpEndpoint& endpoint) {
    auto fd = open_stream_socket(AF_INET);
    const int on = 1;
    checked(::setsockopt(fd.get(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof(on)), "setsockopt(SO_REUSEADDR) failed: {}");
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(endpoint.port);
    address.sin_addr.s_addr = ::inet_addr("127.0.0.1");
    checked(::bind(fd.get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)), "bind() failed: {}");
    return fd;
}

core::UniqueFd open_bound(const UnixEndpoint& endpoint) {
    ::umask(0); // every local user may connect
    auto fd = open_stream_socket(AF_UNIX);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, endpoint.path.c_str(), sizeof(address.sun_path) - 1);
    checked(::bind(fd.get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)), "bind() failed: {}");
    return fd;
}

// The kernel doubles the number for its bookkeeping; one send then takes twice this size. Memory is used only while
// an answer of that size is on its way.
constexpr int wanted_bytes = 32 * 1024 * 1024;

/// The greatest size that SO_SNDBUF may ask for.
long plain_limit() {
    long limit = 0;
    std::ifstream("/proc/sys/net/core/wmem_max") >> limit;
    return limit;
}

/// The size up to which the kernel tunes a TCP send buffer by itself.
long tuning_limit() {
    long least = 0;
    long usual = 0;
    long most = 0;
    std::ifstream("/proc/sys/net/ipv4/tcp_wmem") >> least >> usual >> most;
    return most;
}

/// Lets one send() on the connected socket `fd` take the largest answer of a full plant, tens of megabytes, whatever
/// the peer does. Without the right to force the size it is raised only where that beats the kernel's own tuning.
void enlarge_send_buffer(int fd) {
    if (::setsockopt(fd, SOL_SOCKET, SO_SNDBUFFORCE, &wanted_bytes, sizeof(wanted_bytes)) == 0) {
        return;
    }
    // A size set by hand switches the tuning off, so it must be worth it.
    static const bool worth_it = 2 * plain_limit() > tuning_limit();
    if (worth_it) {
        ::setsockopt(fd, SOL_SOCKET, SO_SNDBUF, &wanted_bytes, sizeof(wanted_bytes));
    }
}

} // namespace

ListenerSocket::ListenerSocket(const Endpoint& endpoint)
    : fd_(std::visit([](const auto& known) { return open_bound(known); }, endpoint)) {
    checked(::listen(get_fd(), backlog), "listen() failed: {}");
    checked(::fcntl(get_fd(), F_SETFL, O_NONBLOCK), "fcntl() failed: {}");
}

Result<std::shared_ptr<IClientSocket>> ListenerSocket::accept() {
    core::UniqueFd fd(::accept4(get_fd(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC));
    if (!fd) {
        return ErrorPayload(Error::CommonError, fmt::format("accept() failed: {}", std::exchange(errno, 0)));
    }
    // An answer must not wait for the acknowledgement of the one before.
    const int on = 1;
    ::setsockopt(fd.get(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof(on));
    enlarge_send_buffer(fd.get());
    errno = 0;
    return std::make_shared<ClientSocket>(std::move(fd));
}

int ListenerSocket::get_fd() const {
    return fd_.get();
}

} // namespace xpon::api_service
