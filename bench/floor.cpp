// A poll loop that does nothing but answer: what the daemon's figures are divided by.

#include "bench/answers.hpp"
#include "bench/sendings.hpp"
#include "xpon/core/unique_fd.hpp"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <iterator>
#include <system_error>
#include <utility>
#include <vector>

#include <sys/socket.h>

#include <fmt/format.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>

namespace xpon::bench {
namespace {

constexpr int usage_error = 2;

int checked(int status, const char* what) {
    if (status < 0) {
        throw std::system_error(errno, std::generic_category(), what);
    }
    return status;
}

/// On a free port of the loopback address, which is printed.
core::UniqueFd open_listener() {
    core::UniqueFd fd(checked(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0), "socket"));
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof(address);
    auto* const place = reinterpret_cast<sockaddr*>(&address);
    checked(::bind(fd.get(), place, length), "bind");
    checked(::listen(fd.get(), SOMAXCONN), "listen");
    checked(::getsockname(fd.get(), place, &length), "getsockname");
    fmt::print("{}\n", ntohs(address.sin_port));
    std::fflush(stdout);
    return fd;
}

class Floor {
public:
    Floor(Answers answers, const Sending& sending)
        : answers_(std::move(answers)), sending_(sending), listener_(open_listener()),
          fds_{{.fd = listener_.get(), .events = POLLIN, .revents = 0}} {}

    [[noreturn]] void run() {
        for (;;) {
            checked(::poll(fds_.data(), fds_.size(), -1), "poll");
            for (std::size_t i = fds_.size() - 1; i > 0; --i) { // backwards: serve() may erase its own entry
                if (fds_[i].revents != 0) {
                    serve(i);
                }
            }
            if (fds_.front().revents != 0) {
                accept();
            }
        }
    }

private:
    void accept() {
        core::UniqueFd fd(::accept4(listener_.get(), nullptr, nullptr, SOCK_CLOEXEC));
        if (fd) {
            set_tcp_option(fd.get(), TCP_NODELAY, sending_.no_delay ? 1 : 0);
            fds_.push_back({.fd = fd.get(), .events = POLLIN, .revents = 0});
            clients_.push_back({.fd = std::move(fd), .received = {}});
        }
    }

    void serve(std::size_t i) {
        auto& client = clients_[i - 1];
        std::array<char, 4096> buffer; // NOLINT(*-member-init): filled by recv
        const auto count = ::recv(client.fd.get(), buffer.data(), buffer.size(), MSG_DONTWAIT);
        if (count <= 0) {
            fds_.erase(fds_.begin() + static_cast<std::ptrdiff_t>(i));
            clients_.erase(clients_.begin() + static_cast<std::ptrdiff_t>(i - 1));
            return;
        }
        client.received.append(buffer.data(), static_cast<std::size_t>(count));
        if (client.received.back() == '\0') { // a client sends one request and awaits its answer
            client.received.pop_back();
            sending_.send(client.fd.get(), answers_(client.received));
            client.received.clear();
        }
    }

    struct Client {
        core::UniqueFd fd;
        std::string received;
    };

    Answers answers_;
    const Sending& sending_;
    core::UniqueFd listener_;
    std::vector<pollfd> fds_; ///< the listener's, then one for each of clients_
    std::vector<Client> clients_;
};

std::string read_file(const char* path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

} // namespace
} // namespace xpon::bench

int main(int count, char** arguments) {
    using namespace xpon::bench;
    if (count != 4) {
        fmt::print(stderr, "usage: bench_floor ANSWERS SENDING DOCUMENT_FILE\n");
        return usage_error;
    }
    try {
        Floor(Answers(arguments[1], read_file(arguments[3])), find_sending(arguments[2])).run();
    } catch (const std::exception& exception) {
        fmt::print(stderr, "bench_floor: {}\n", exception.what());
        return EXIT_FAILURE;
    }
}
