#pragma once

#include <chrono>

#include <zmq.hpp>

namespace xpon::ipc {

/// A socket that never holds up its process: closing it drops what waits, its queues and messages are bounded.
zmq::socket_t make_socket(zmq::context_t& context, zmq::socket_type type);

/// Waits until `events` (ZMQ_POLLIN, ZMQ_POLLOUT) of `socket` hold, or `timeout` is over; returns those that do.
/// A signal may end the wait early.
short wait_for(zmq::socket_ref socket, short events, std::chrono::milliseconds timeout);

} // namespace xpon::ipc
