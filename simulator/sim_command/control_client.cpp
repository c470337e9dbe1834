#include "simulator/sim_command/control_client.hpp"

#include "xpon/peer_side/olt_root.hpp"

#include <array>
#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <system_error>

#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>

#include <fmt/format.h>
#include <poll.h>

namespace xpon::simulator {
namespace {

constexpr timeval longest_wait{.tv_sec = 30, .tv_usec = 0};

core::UniqueFd connect_to(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path) {
        throw std::runtime_error(fmt::format("{}: the path of OLT_ROOT is too long", path));
    }
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
    core::UniqueFd socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    ::setsockopt(socket.get(), SOL_SOCKET, SO_RCVTIMEO, &longest_wait, sizeof longest_wait);
    if (::connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        throw std::runtime_error(fmt::format("no simulator answers at {} ({}); is OLT_ROOT that of a running one?",
                                             path, std::generic_category().message(errno)));
    }
    return socket;
}

} // namespace

ControlClient::ControlClient() : path_(below_olt_root("/run/control.sock")), socket_(connect_to(path_)) {}

std::string ControlClient::ask(std::string_view command) {
    auto line = std::string(command) + "\n";
    for (std::string_view rest = line; !rest.empty();) {
        const auto sent = ::send(socket_.get(), rest.data(), rest.size(), MSG_NOSIGNAL);
        if (sent < 0) {
            throw std::runtime_error(fmt::format("the simulator at {} is gone", path_));
        }
        rest.remove_prefix(static_cast<std::size_t>(sent));
    }
    auto answer = receive_line();
    if (answer.empty()) {
        throw std::runtime_error(fmt::format("the simulator at {} does not answer", path_));
    }
    return answer;
}

std::string ControlClient::receive_line() {
    std::array<char, 65536> bytes;
    for (auto end = received_.find('\n');; end = received_.find('\n')) {
        if (end != std::string::npos) {
            auto line = received_.substr(0, end);
            received_.erase(0, end + 1);
            return line;
        }
        const auto count = ::recv(socket_.get(), bytes.data(), bytes.size(), 0);
        if (count <= 0) {
            return {};
        }
        received_.append(bytes.data(), static_cast<std::size_t>(count));
    }
}

std::string ControlClient::next_event() {
    constexpr timeval no_limit{};
    ::setsockopt(socket_.get(), SOL_SOCKET, SO_RCVTIMEO, &no_limit, sizeof no_limit);
    return receive_line();
}

void ControlClient::pause(std::chrono::milliseconds time) {
    pollfd socket{.fd = socket_.get(), .events = POLLIN, .revents = 0};
    if (::poll(&socket, 1, static_cast<int>(time.count())) > 0) {
        throw std::runtime_error(fmt::format("the simulator at {} is gone", path_));
    }
}

} // namespace xpon::simulator
