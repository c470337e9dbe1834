#pragma once

#include "xpon/client/frame.hpp"
#include "xpon/core/unique_fd.hpp"

#include <cstdint>
#include <list>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace xpon::test {

inline constexpr std::uint16_t relay_port = 9998;

/// A message that went by.
struct Passed {
    bool is_answer = false;
    std::string text; ///< as it was sent
};

/// Between a client and the daemon on 127.0.0.1, on a port of its own: passes on what either says, closes one side when
/// the other does, and writes the messages down in the order in which they come by.
class Relay {
public:
    Relay();
    Relay(const Relay&) = delete;
    Relay& operator=(const Relay&) = delete;
    ~Relay();

    /// Those that hold `text`, or answer one that does.
    [[nodiscard]] std::vector<Passed> passed(const std::string& text) const;

private:
    struct Side {
        core::UniqueFd socket;
        client::FrameReader sent; ///< by this side
    };
    struct Pair {
        Side client;
        Side daemon;
        std::string asked; ///< the latest request
    };
    struct Record {
        Passed passed;
        std::string asked;
    };

    void run();
    void accept_one();
    bool pass_on(Pair& pair, bool is_answer);

    core::UniqueFd listener_;
    core::UniqueFd stop_;
    std::list<Pair> pairs_;
    mutable std::mutex mutex_; // of what follows
    std::vector<Record> records_;
    std::thread thread_;
};

} // namespace xpon::test
