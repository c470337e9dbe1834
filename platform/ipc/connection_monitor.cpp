#include "ipc/connection_monitor.hpp"

#include "ipc/zmq_socket.hpp"

#include <cstring>
#include <string>

#include <fmt/format.h>

namespace xpon::ipc {

ConnectionMonitor::ConnectionMonitor(zmq::context_t& context, zmq::socket_t& watched)
    : watched_(watched), events_(context, zmq::socket_type::pair) {
    const auto endpoint = fmt::format("inproc://monitor-{}", watched.handle());
    if (zmq_socket_monitor(watched.handle(), endpoint.c_str(),
                           ZMQ_EVENT_HANDSHAKE_SUCCEEDED | ZMQ_EVENT_DISCONNECTED) != 0) {
        throw zmq::error_t();
    }
    events_.set(zmq::sockopt::linger, 0);
    // Two small events for each life of the peer. With a limit, ZeroMQ's own thread would wait for their reader.
    events_.set(zmq::sockopt::rcvhwm, 0);
    uninterrupted([&] { events_.connect(endpoint); });
}

ConnectionMonitor::~ConnectionMonitor() {
    zmq_socket_monitor(watched_.handle(), nullptr, 0);
}

void ConnectionMonitor::update() {
    // An event is a frame of its number (16 bits) and a value, and a frame of the endpoint's name.
    zmq::message_t event;
    zmq::message_t endpoint;
    while (receive(events_, event)) {
        std::ignore = receive(events_, endpoint);
        std::uint16_t number = 0;
        std::memcpy(&number, event.data(), sizeof number);
        if (number == ZMQ_EVENT_HANDSHAKE_SUCCEEDED) {
            is_connected_ = true;
        } else if (is_connected_) {
            is_connected_ = false;
            ++breaks_;
        }
    }
}

bool ConnectionMonitor::is_connected() const {
    return is_connected_;
}

std::uint64_t ConnectionMonitor::breaks() const {
    return breaks_;
}

zmq::socket_ref ConnectionMonitor::events() {
    return events_;
}

} // namespace xpon::ipc
