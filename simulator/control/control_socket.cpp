#include "simulator/control/control_socket.hpp"

#include "xpon/peer_side/olt_root.hpp"

#include <array>
#include <cerrno>
#include <cstring>
#include <system_error>
#include <utility>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

#include <unistd.h>

namespace xpon::simulator {
namespace {

constexpr std::size_t longest_line = 64 * 1024;
/// A client that does not read its answers gets no more of them.
constexpr std::size_t most_unsent = 4 * 1024 * 1024;
constexpr std::size_t most_clients = 16;

[[noreturn]] void fail(int cause, const std::string& path) {
    throw std::system_error(cause, std::generic_category(), path);
}

core::UniqueFd listen_at(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path) {
        fail(ENAMETOOLONG, path);
    }
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
    core::UniqueFd socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    // Left by a simulator that was killed; there is no other one of this OLT.
    ::unlink(path.c_str());
    // Before it is bound: nobody else gets in between.
    ::fchmod(socket.get(), S_IRUSR | S_IWUSR);
    if (!socket || ::bind(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        ::listen(socket.get(), most_clients) != 0) {
        fail(errno, path);
    }
    return socket;
}

} // namespace

ControlSocket::ControlSocket(Command command)
    : command_(std::move(command)), path_(below_olt_root("/run/control.sock")), listener_(listen_at(path_)) {}

ControlSocket::~ControlSocket() {
    ::unlink(path_.c_str());
}

std::span<pollfd> ControlSocket::awaited() {
    awaited_.assign(1, {.fd = clients_.size() < most_clients ? listener_.get() : -1, .events = POLLIN, .revents = 0});
    for (const auto& client : clients_) {
        const auto receiving = may_receive(client) ? POLLIN : 0;
        const auto sending = client.to_send.empty() ? 0 : POLLOUT;
        awaited_.push_back(
            {.fd = client.socket.get(), .events = static_cast<short>(receiving | sending), .revents = 0});
    }
    return awaited_;
}

void ControlSocket::serve() {
    auto found = awaited_.begin();
    const bool has_new_clients = found->revents != 0;
    for (auto& client : clients_) {
        client.is_readable = (++found)->revents != 0;
    }
    if (has_new_clients) {
        accept_clients();
    }
    std::erase_if(clients_, [this](Client& client) { return !serve(client); });
}

void ControlSocket::publish(std::span<const Event> events) {
    for (auto& client : clients_) {
        for (const auto& event : events) {
            if (client.watch && client.watch->lets_through(event)) {
                client.to_send += to_json_line(event) + "\n";
            }
        }
        client.is_too_slow = client.to_send.size() > 2 * most_unsent;
    }
}

void ControlSocket::accept_clients() {
    while (clients_.size() < most_clients) {
        core::UniqueFd socket(::accept4(listener_.get(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
        if (!socket) {
            return;
        }
        clients_.push_back({.socket = std::move(socket), .is_readable = true}); // mostly its first line is there, too
    }
}

bool ControlSocket::serve(Client& client) {
    if (std::exchange(client.is_readable, false)) {
        receive(client);
    }
    run_commands(client);
    return send(client) && !client.is_too_slow && !(client.has_ended && client.to_send.empty());
}

bool ControlSocket::send(Client& client) {
    if (client.to_send.empty()) {
        return true;
    }
    const auto sent = ::send(client.socket.get(), client.to_send.data(), client.to_send.size(), MSG_NOSIGNAL);
    if (sent > 0) {
        client.to_send.erase(0, static_cast<std::size_t>(sent));
    }
    return sent >= 0 || errno == EAGAIN || errno == EINTR;
}

bool ControlSocket::may_receive(const Client& client) {
    return !client.has_ended && client.received.size() <= longest_line;
}

void ControlSocket::receive(Client& client) {
    std::array<char, 4096> bytes;
    while (may_receive(client)) {
        const auto count = ::recv(client.socket.get(), bytes.data(), bytes.size(), 0);
        if (count > 0) {
            client.received.append(bytes.data(), static_cast<std::size_t>(count));
            continue;
        }
        client.has_ended = count == 0 || (errno != EAGAIN && errno != EINTR);
        return;
    }
}

void ControlSocket::run_commands(Client& client) {
    for (auto end = client.received.find('\n'); end != std::string::npos && client.to_send.size() < most_unsent;
         end = client.received.find('\n')) {
        client.to_send += command_(std::string_view(client.received).substr(0, end), client.watch) + "\n";
        client.received.erase(0, end + 1);
    }
    if (client.received.size() > longest_line && client.received.find('\n') == std::string::npos) {
        client.received.clear();
        client.has_ended = true;
    }
}

} // namespace xpon::simulator
