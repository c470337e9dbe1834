#pragma once

#include "xpon/client/connection.hpp"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace xpon::bench {

using Clock = std::chrono::steady_clock;

/// Clients that repeat the same requests, each as fast as it is answered. A sample is what one pass over all requests
/// took.
class LoadGroup {
public:
    /// `path`: a file of requests, one a line. Throws std::runtime_error.
    LoadGroup(const std::string& path, std::size_t clients, std::uint16_t port);

    /// Puts the clients into an epoll set, in which this is group number `group`.
    void watch(int epoll, std::uint32_t group);
    /// Group and client of an event's data.
    static std::pair<std::size_t, std::size_t> source_of(std::uint64_t data) {
        return {data >> 32, data & 0xFFFF'FFFF};
    }
    void start();
    /// Receives what has come for a client. No new pass begins after `end`.
    void receive(std::size_t client, Clock::time_point end);

    [[nodiscard]] bool is_finished() const {
        return running_ == 0;
    }
    /// One line of JSON.
    [[nodiscard]] std::string figures();

private:
    struct Client {
        client::Connection connection;
        std::size_t request = 0; ///< that is under way
        Clock::time_point begin = {};
    };
    void send_next(Client& client);

    std::vector<std::string> requests_; ///< with their NULs
    std::vector<Client> clients_;
    std::size_t running_ = 0; ///< clients in the midst of a pass
    Clock::time_point begin_;
    Clock::time_point end_;     ///< of the last sample
    std::vector<double> taken_; ///< microseconds of each sample
    std::uint64_t bytes_ = 0;
};

} // namespace xpon::bench
