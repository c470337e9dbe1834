#include "bench/load_group.hpp"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <fstream>
#include <stdexcept>
#include <utility>

#include <sys/epoll.h>
#include <sys/socket.h>

#include <fmt/format.h>

namespace xpon::bench {
namespace {

/// The least value that at least `share` of all are not above.
double quantile(std::vector<double>& values, double share) {
    const auto at = static_cast<std::ptrdiff_t>(std::ceil(share * static_cast<double>(values.size()))) - 1;
    std::nth_element(values.begin(), values.begin() + at, values.end());
    return values[static_cast<std::size_t>(at)];
}

} // namespace

LoadGroup::LoadGroup(const std::string& path, std::size_t clients, std::uint16_t port) {
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);) {
        requests_.push_back(line + '\0');
    }
    if (requests_.empty()) {
        throw std::runtime_error(path + " holds no request");
    }
    for (std::size_t i = 0; i < clients; ++i) {
        auto connection = client::Connection::open(client::TcpEndpoint{.port = port});
        if (!connection) {
            throw std::runtime_error(connection.error().to_string());
        }
        clients_.push_back({.connection = std::move(connection).value()});
    }
}

void LoadGroup::watch(int epoll, std::uint32_t group) {
    for (std::size_t i = 0; i < clients_.size(); ++i) {
        epoll_event event{.events = EPOLLIN, .data = {.u64 = std::uint64_t{group} << 32 | i}};
        ::epoll_ctl(epoll, EPOLL_CTL_ADD, clients_[i].connection.descriptor(), &event);
    }
}

void LoadGroup::start() {
    begin_ = end_ = Clock::now();
    running_ = clients_.size();
    for (auto& client : clients_) {
        client.begin = Clock::now();
        send_next(client);
    }
}

void LoadGroup::send_next(Client& client) {
    const auto& request = requests_[client.request];
    const auto sent = ::send(client.connection.descriptor(), request.data(), request.size(), MSG_NOSIGNAL);
    if (sent != static_cast<ssize_t>(request.size())) {
        throw std::runtime_error("a request was not taken");
    }
}

void LoadGroup::receive(std::size_t number, Clock::time_point end) {
    static std::vector<char> buffer(1 << 20);
    auto& client = clients_[number];
    const auto count = ::recv(client.connection.descriptor(), buffer.data(), buffer.size(), MSG_DONTWAIT);
    if (count < 0 && errno == EAGAIN) {
        return;
    }
    if (count <= 0) {
        throw std::runtime_error("the server closed a connection");
    }
    bytes_ += static_cast<std::uint64_t>(count);
    if (buffer[static_cast<std::size_t>(count) - 1] != '\0') {
        return; // one request is under way, so that nothing stands behind the end of its answer
    }
    if (++client.request == requests_.size()) {
        client.request = 0;
        end_ = Clock::now();
        taken_.push_back(std::chrono::duration<double, std::micro>(end_ - client.begin).count());
        client.begin = end_;
        if (end_ >= end) {
            --running_;
            return;
        }
    }
    send_next(client);
}

std::string LoadGroup::figures() {
    const auto count = taken_.size();
    const auto seconds = std::chrono::duration<double>(end_ - begin_).count();
    return fmt::format(R"({{"samples": {}, "p50_us": {:.2f}, "p99_us": {:.2f}, "per_s": {:.1f}, "bytes": {}}})", count,
                       quantile(taken_, 0.5), quantile(taken_, 0.99), static_cast<double>(count) / seconds, bytes_);
}

} // namespace xpon::bench
