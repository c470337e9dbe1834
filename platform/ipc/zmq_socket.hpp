#pragma once

#include <cerrno>
#include <chrono>
#include <cstddef>
#include <span>
#include <tuple>

#include <poll.h>
#include <zmq.hpp>

namespace xpon::ipc {

/// The socket of a client (dealer) or a server (router). It never holds up its process: closing it drops what waits,
/// its queues and messages are bounded. What one side has for another that does not read is a few answers, or as many
/// bytes of requests and notices: there is one question at a time.
zmq::socket_t make_socket(zmq::context_t& context, zmq::socket_type type);

/// A step of ZeroMQ's that a signal may end with EINTR, until none does.
template <class Step>
auto uninterrupted(Step&& step) {
    for (;;) {
        try {
            return step();
        } catch (const zmq::error_t& error) {
            if (error.num() != EINTR) {
                throw;
            }
        }
    }
}

/// Does a step that sends without waiting; false when there is no room. ZeroMQ takes note of what the other side has
/// read only when it is asked, or after a while: with short queues a step may find no room where there is some.
template <class Step>
bool sent_if_room(zmq::socket_ref socket, Step&& step) {
    if (uninterrupted(step)) {
        return true;
    }
    std::ignore = uninterrupted([&] { return socket.get(zmq::sockopt::events); });
    return uninterrupted(step).has_value();
}

/// Neither waits. False when nothing is there, or nothing can be sent.
/// @{
bool receive(zmq::socket_ref socket, zmq::message_t& message);
bool send(zmq::socket_ref socket, std::span<const std::byte> bytes);
/// @}

/// For wait_for: whatever may happen to `socket`. ZeroMQ tells once, so nothing must be left of what it told before:
/// the last step that was tried was to receive, and nothing was there, or to send, and there was no room.
pollfd news_of(zmq::socket_ref socket);

/// Waits until something happens to one of `items`, or `timeout` is over. A signal may end the wait early. ZeroMQ's own
/// function for that asks every socket before and behind the wait, at several system calls each.
void wait_for(std::span<pollfd> items, std::chrono::milliseconds timeout);

} // namespace xpon::ipc
