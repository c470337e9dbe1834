#include "ipc/zmq_socket.hpp"

#include "ipc/message.hpp"

#include <algorithm>
#include <cerrno>

namespace xpon::ipc {

zmq::socket_t make_socket(zmq::context_t& context, zmq::socket_type type) {
    // A question, a hello behind one that was not answered, a notice. A server's socket drops an answer that finds no
    // room; what is received and not read holds up its sender.
    static constexpr int sent_messages = 4;
    static constexpr int received_messages = 1;
    zmq::socket_t socket(context, type);
    socket.set(zmq::sockopt::linger, 0);
    socket.set(zmq::sockopt::sndhwm, sent_messages);
    socket.set(zmq::sockopt::rcvhwm, received_messages);
    socket.set(zmq::sockopt::maxmsgsize, max_message_bytes);
    return socket;
}

bool receive(zmq::socket_ref socket, zmq::message_t& message) {
    return uninterrupted([&] { return socket.recv(message, zmq::recv_flags::dontwait).has_value(); });
}

bool send(zmq::socket_ref socket, std::span<const std::byte> bytes) {
    return sent_if_room(
        socket, [&] { return socket.send(zmq::buffer(bytes.data(), bytes.size()), zmq::send_flags::dontwait); });
}

void wait_for(std::span<zmq_pollitem_t> items, std::chrono::milliseconds timeout) {
    const auto wait = std::max<std::chrono::milliseconds::rep>(timeout.count(), 0);
    if (zmq_poll(items.data(), static_cast<int>(items.size()), wait) < 0 && errno != EINTR) {
        throw zmq::error_t();
    }
}

zmq_pollitem_t poll_item(zmq::socket_ref socket, short events) {
    return {.socket = socket.handle(), .fd = 0, .events = events, .revents = 0};
}

} // namespace xpon::ipc
