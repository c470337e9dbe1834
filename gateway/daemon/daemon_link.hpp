#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace boost::asio {
class io_context;
}

namespace xpon::gateway {

/// A daemon from its start, or from SIGHUP, to its end: the life of its sessions. Counted from 1 as they are met.
using Incarnation = std::uint64_t;

/// Why there is no answer.
enum class Trouble : std::uint8_t {
    unreachable, ///< the daemon cannot be connected to; the request was not sent
    restarted,   ///< the daemon is another one than that of the session; the request was not sent
    busy,        ///< its time passed while it waited for others; the request was not sent
    timed_out,   ///< the daemon may still carry it out
    lost,        ///< the connection broke; it may have been carried out
};

struct Reply {
    std::optional<std::string> answer; ///< the daemon's text
    Trouble trouble{};                 ///< when there is no answer
    Incarnation incarnation = 0;       ///< of the daemon that answered
};

struct Question {
    std::string text;
    std::chrono::steady_clock::time_point deadline;
    Incarnation incarnation = 0; ///< that the session in it belongs to; 0: any
    bool background = false;     ///< nobody waits for it: others go first
    std::function<void(Reply)> done;
};

/// The way to the daemon: some connections, each with one request under way at a time, and one more that carries
/// nothing. That one breaks when the daemon ends or builds itself anew, and only then: sessions of before are unknown
/// afterwards, and their ids belong to others soon. A connection is used only while that one, which is older, is whole.
/// Connects by itself, again and again. For the thread of the io_context alone.
class DaemonLink {
public:
    DaemonLink(boost::asio::io_context& context, std::uint16_t port);
    DaemonLink(const DaemonLink&) = delete;
    DaemonLink& operator=(const DaemonLink&) = delete;
    ~DaemonLink();

    /// `changed` is called when the daemon has become reachable, or is so no longer.
    void start(std::function<void()> changed);
    /// `done` is called once, never before this returns.
    void ask(Question question);
    /// Gives up those that wait for a connection beyond their deadline; to be called every now and then.
    void drop_overdue();

    [[nodiscard]] bool is_up() const;
    /// Counts the daemons that were met, from 1; while none is reachable that of the latest.
    [[nodiscard]] Incarnation incarnation() const;

private:
    class Impl;
    std::shared_ptr<Impl> impl_;
};

} // namespace xpon::gateway
