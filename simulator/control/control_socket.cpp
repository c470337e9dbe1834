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

void ControlSocket::serve() {
    accept_clients();
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
        clients_.push_back({std::move(socket)});
    }
}

bool ControlSocket::serve(Client& client) {
    receive(client);
    run_commands(client);
    const auto sent = ::send(client.socket.get(), client.to_send.data(), client.to_send.size(), MSG_NOSIGNAL);
    if (sent > 0) {
        client.to_send.erase(0, static_cast<std::size_t>(sent));
    }
    const bool is_gone = sent < 0 && errno != EAGAIN && errno != EINTR;
    return !is_gone && !client.is_too_slow && !(client.has_ended && client.to_send.empty());
}

void ControlSocket::receive(Client& client) {
    std::array<char, 4096> bytes;
    while (!client.has_ended && client.received.size() <= longest_line) {
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
