#pragma once

#include <cstdint>

#include <zmq.hpp>

namespace xpon::ipc {

/// Knows whether a ZeroMQ socket with one connection has it right now, which the socket itself does not tell: one
/// that cannot send may as well have a full queue.
class ConnectionMonitor {
public:
    /// `watched` is not owned, and outlives the monitor.
    ConnectionMonitor(zmq::context_t& context, zmq::socket_t& watched);
    /// Nobody would read what happens from now on: ZeroMQ's thread would wait for a reader, and lose the message.
    ~ConnectionMonitor();
    ConnectionMonitor(const ConnectionMonitor&) = delete;
    ConnectionMonitor& operator=(const ConnectionMonitor&) = delete;

    /// Takes in what happened since the last call.
    void update();
    [[nodiscard]] bool is_connected() const;
    /// How often the connection broke.
    [[nodiscard]] std::uint64_t breaks() const;

    /// Readable when there is something to take in.
    [[nodiscard]] zmq::socket_ref events();

private:
    zmq::socket_ref watched_;
    zmq::socket_t events_;
    bool is_connected_ = false;
    std::uint64_t breaks_ = 0;
};

} // namespace xpon::ipc
