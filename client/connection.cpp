#include "xpon/client/connection.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <system_error>
#include <utility>

#include <sys/socket.h>
#include <sys/un.h>

#include <fcntl.h>
#include <fmt/format.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>

namespace xpon::client {
namespace {

using core::Error;
using core::ErrorPayload;
using core::Result;

ErrorPayload system_error(std::string_view what) {
    return {Error::CommonError, fmt::format("{}: {}", what, std::generic_category().message(errno))};
}

ErrorPayload unreachable(std::string_view endpoint) {
    return {Error::NoAccess, fmt::format("Cannot connect to {}: {}", endpoint, std::generic_category().message(errno))};
}

Result<void> connect_to(int descriptor, const TcpEndpoint& endpoint) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(endpoint.port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (connect(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        return unreachable(fmt::format("127.0.0.1:{}", endpoint.port));
    }
    // A request is one small segment that must not wait for the acknowledgement of the one before.
    const int on = 1;
    setsockopt(descriptor, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    return core::success();
}

Result<void> connect_to(int descriptor, const UnixEndpoint& endpoint) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (endpoint.path.size() >= sizeof address.sun_path) {
        return ErrorPayload(Error::InvalidInputArg, fmt::format("Socket path '{}' is too long", endpoint.path));
    }
    std::ranges::copy(endpoint.path, address.sun_path);
    if (connect(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        return unreachable(fmt::format("'{}'", endpoint.path));
    }
    return core::success();
}

Result<void> wait_for(int descriptor, short events, Deadline deadline) {
    while (true) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
        pollfd entry{.fd = descriptor, .events = events, .revents = 0};
        const int ready = poll(&entry, 1, static_cast<int>(std::clamp<std::int64_t>(left.count(), 0, 3'600'000)));
        if (ready > 0) {
            return core::success();
        }
        if (ready == 0) {
            return ErrorPayload(Error::Overflow, "The daemon did not answer in time");
        }
        if (errno != EINTR) {
            return system_error("poll");
        }
    }
}

} // namespace

Result<Connection> Connection::open(const Endpoint& endpoint) {
    const int family = std::holds_alternative<TcpEndpoint>(endpoint) ? AF_INET : AF_UNIX;
    core::UniqueFd descriptor(socket(family, SOCK_STREAM | SOCK_CLOEXEC, 0));
    if (!descriptor) {
        return system_error("socket");
    }
    BOOST_OUTCOME_TRY(std::visit([&](const auto& to) { return connect_to(descriptor.get(), to); }, endpoint));
    if (fcntl(descriptor.get(), F_SETFL, O_NONBLOCK) != 0) {
        return system_error("fcntl");
    }
    return Connection(std::move(descriptor));
}

Result<void> Connection::send_frame(std::string_view text, Deadline deadline) {
    return send_bytes(make_frame(text), deadline);
}

Result<void> Connection::send_bytes(std::string_view bytes, Deadline deadline) {
    while (!bytes.empty()) {
        const auto sent = send(descriptor_.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (sent >= 0) {
            bytes.remove_prefix(static_cast<std::size_t>(sent));
        } else if (errno == EAGAIN) {
            BOOST_OUTCOME_TRY(wait_for(descriptor_.get(), POLLOUT, deadline));
        } else if (errno == EPIPE || errno == ECONNRESET) {
            return ErrorPayload(Error::Empty, "The daemon has closed the connection");
        } else if (errno != EINTR) {
            return system_error("send");
        }
    }
    return core::success();
}

Result<std::string> Connection::receive_frame(Deadline deadline) {
    while (true) {
        if (auto frame = received_.next()) {
            return *std::move(frame);
        }
        BOOST_OUTCOME_TRY(wait_for(descriptor_.get(), POLLIN, deadline));
        std::array<char, 65536> buffer; // filled by recv
        const auto count = recv(descriptor_.get(), buffer.data(), buffer.size(), 0);
        if (count > 0) {
            received_.append({buffer.data(), static_cast<std::size_t>(count)});
        } else if (count == 0 || errno == ECONNRESET) {
            return ErrorPayload(Error::Empty, "The daemon has closed the connection");
        } else if (errno != EAGAIN && errno != EINTR) {
            return system_error("recv");
        }
    }
}

} // namespace xpon::client
