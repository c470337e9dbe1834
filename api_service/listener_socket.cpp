#include "api_service/listener_socket.hpp"

#include <cerrno>
#include <cstring>
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
    errno = 0;
    return std::make_shared<ClientSocket>(std::move(fd));
}

int ListenerSocket::get_fd() const {
    return fd_.get();
}

} // namespace xpon::api_service
