#include "tests/system/relay.hpp"

#include <array>
#include <stdexcept>
#include <string_view>
#include <utility>

#include <sys/eventfd.h>
#include <sys/socket.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>

namespace xpon::test {
namespace {

constexpr std::uint16_t daemon_port = 9999;

sockaddr_in loopback(std::uint16_t port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(port);
    return address;
}

core::UniqueFd tcp_socket() {
    return core::UniqueFd(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
}

} // namespace

Relay::Relay() : listener_(tcp_socket()), stop_(eventfd(0, EFD_CLOEXEC)) {
    const auto address = loopback(relay_port);
    if (bind(listener_.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        listen(listener_.get(), SOMAXCONN) != 0) {
        throw std::runtime_error("the relay cannot listen");
    }
    thread_ = std::thread([this] { run(); });
}

Relay::~Relay() {
    eventfd_write(stop_.get(), 1);
    thread_.join();
}

std::vector<Passed> Relay::passed(const std::string& text) const {
    const std::lock_guard lock(mutex_);
    std::vector<Passed> found;
    for (const auto& record : records_) {
        if (record.asked.find(text) != std::string::npos) {
            found.push_back(record.passed);
        }
    }
    return found;
}

void Relay::run() {
    while (true) {
        std::vector<pollfd> entries{{.fd = stop_.get(), .events = POLLIN, .revents = 0},
                                    {.fd = listener_.get(), .events = POLLIN, .revents = 0}};
        for (const auto& pair : pairs_) {
            entries.push_back({.fd = pair.client.socket.get(), .events = POLLIN, .revents = 0});
            entries.push_back({.fd = pair.daemon.socket.get(), .events = POLLIN, .revents = 0});
        }
        if (poll(entries.data(), entries.size(), -1) < 0 || entries[0].revents != 0) {
            return;
        }
        std::size_t entry = 2;
        for (auto pair = pairs_.begin(); pair != pairs_.end(); entry += 2) {
            const bool is_whole = (entries[entry].revents == 0 || pass_on(*pair, false)) &&
                                  (entries[entry + 1].revents == 0 || pass_on(*pair, true));
            pair = is_whole ? std::next(pair) : pairs_.erase(pair);
        }
        if (entries[1].revents != 0) {
            accept_one();
        }
    }
}

void Relay::accept_one() {
    Pair pair;
    pair.client.socket = core::UniqueFd(accept4(listener_.get(), nullptr, nullptr, SOCK_CLOEXEC));
    pair.daemon.socket = tcp_socket();
    const auto address = loopback(daemon_port);
    if (connect(pair.daemon.socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0) {
        pairs_.push_back(std::move(pair)); // else the client sees its connection close
    }
}

/// False when the side that was to be read is gone.
bool Relay::pass_on(Pair& pair, bool is_answer) {
    auto& from = is_answer ? pair.daemon : pair.client;
    const auto& to = is_answer ? pair.client : pair.daemon;
    std::array<char, 65536> buffer{};
    const auto count = recv(from.socket.get(), buffer.data(), buffer.size(), 0);
    if (count <= 0) {
        return false;
    }
    const std::string_view bytes(buffer.data(), static_cast<std::size_t>(count));
    from.sent.append(bytes);
    // Written down before anybody can react to it.
    for (auto text = from.sent.next(); text; text = from.sent.next()) {
        if (!is_answer) {
            pair.asked = *text;
        }
        const std::lock_guard lock(mutex_);
        records_.push_back({.passed = {.is_answer = is_answer, .text = *std::move(text)}, .asked = pair.asked});
    }
    for (auto left = bytes; !left.empty();) {
        const auto sent = send(to.socket.get(), left.data(), left.size(), MSG_NOSIGNAL);
        if (sent < 0) {
            return false;
        }
        left.remove_prefix(static_cast<std::size_t>(sent));
    }
    return true;
}

} // namespace xpon::test
