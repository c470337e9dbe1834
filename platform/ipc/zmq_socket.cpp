#include "ipc/zmq_socket.hpp"

#include "ipc/message.hpp"

#include <algorithm>
#include <cerrno>

namespace xpon::ipc {

zmq::socket_t make_socket(zmq::context_t& context, zmq::socket_type type) {
    static constexpr int queued_messages = 64;
    zmq::socket_t socket(context, type);
    socket.set(zmq::sockopt::linger, 0);
    socket.set(zmq::sockopt::sndhwm, queued_messages);
    socket.set(zmq::sockopt::rcvhwm, queued_messages);
    socket.set(zmq::sockopt::maxmsgsize, max_message_bytes);
    return socket;
}

short wait_for(zmq::socket_ref socket, short events, std::chrono::milliseconds timeout) {
    zmq_pollitem_t item{.socket = socket.handle(), .fd = 0, .events = events, .revents = 0};
    const auto wait = std::max<std::chrono::milliseconds::rep>(timeout.count(), 0);
    if (zmq_poll(&item, 1, wait) < 0 && errno != EINTR) {
        throw zmq::error_t();
    }
    return item.revents;
}

} // namespace xpon::ipc
