#include "ipc/zmq_socket.hpp"

#include "ipc/message.hpp"

#include <algorithm>
#include <cerrno>
#include <system_error>

namespace xpon::ipc {

zmq::socket_t make_socket(zmq::context_t& context, zmq::socket_type type) {
    // Answers may be long. A server's socket drops one that finds no room; what is received and not read holds up its
    // sender.
    static constexpr int sent_answers = 4;
    // ZeroMQ's thread and the socket's wake each other whenever half of what a queue may hold has been taken from it:
    // with three answers every second time, with one each time. Requests are short, so there may be more of them.
    static constexpr int received_answers = 3;
    static constexpr int requests = 16;
    const bool is_client = type == zmq::socket_type::dealer;
    zmq::socket_t socket(context, type);
    socket.set(zmq::sockopt::linger, 0);
    socket.set(zmq::sockopt::sndhwm, is_client ? requests : sent_answers);
    socket.set(zmq::sockopt::rcvhwm, is_client ? received_answers : requests);
    socket.set(zmq::sockopt::maxmsgsize, is_client ? max_message_bytes : max_request_bytes);
    return socket;
}

bool receive(zmq::socket_ref socket, zmq::message_t& message) {
    return uninterrupted([&] { return socket.recv(message, zmq::recv_flags::dontwait).has_value(); });
}

bool send(zmq::socket_ref socket, std::span<const std::byte> bytes) {
    return sent_if_room(
        socket, [&] { return socket.send(zmq::buffer(bytes.data(), bytes.size()), zmq::send_flags::dontwait); });
}

pollfd news_of(zmq::socket_ref socket) {
    return {.fd = socket.get(zmq::sockopt::fd), .events = POLLIN, .revents = 0};
}

void wait_for(std::span<pollfd> items, std::chrono::milliseconds timeout) {
    constexpr std::chrono::milliseconds longest = std::chrono::hours(1);
    const auto wait = std::clamp(timeout, std::chrono::milliseconds::zero(), longest);
    if (::poll(items.data(), items.size(), static_cast<int>(wait.count())) < 0 && errno != EINTR) {
        throw std::system_error(errno, std::generic_category(), "poll");
    }
}

} // namespace xpon::ipc
