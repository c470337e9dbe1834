#include "ipc/peer_connection.hpp"

#include "ipc/socket_path.hpp"
#include "ipc/zmq_socket.hpp"

#include <algorithm>
#include <cerrno>
#include <system_error>

#include <fmt/format.h>

namespace xpon::ipc {
namespace {

using std::chrono::ceil;
using std::chrono::milliseconds;

/// Shortest time in which a broken connection is tried again.
constexpr milliseconds reconnect_interval{50};
/// While an answer is awaited, how often to look whether the connection still stands. Shorter than the above, so
/// that no peer can die and come back in between.
constexpr milliseconds connection_check_interval{20};

} // namespace

PeerConnection::PeerConnection(zmq::context_t& context, Address own, Address peer, const std::string& path,
                               core::ILogger& logger, const Timing& timing)
    : own_(own), peer_(peer), path_(path), logger_(logger), timing_(timing),
      socket_(make_socket(context, zmq::socket_type::dealer)) {
    // Without a connection nothing is queued: a peer that comes back must not be handed the commands of the past.
    socket_.set(zmq::sockopt::immediate, true);
    socket_.set(zmq::sockopt::reconnect_ivl, static_cast<int>(reconnect_interval.count()));
    socket_.connect("ipc://" + path_);
}

core::Result<void> PeerConnection::shake_hands() {
    const auto deadline = Clock::now() + timing_.handshake;
    int cause = ECONNREFUSED;
    while (Clock::now() < deadline) {
        const auto remaining = ceil<milliseconds>(deadline - Clock::now());
        if ((wait_for(socket_, ZMQ_POLLOUT, remaining) & ZMQ_POLLOUT) == 0) {
            continue;
        }
        Ipc::Reply answer;
        cause = exchange(Operation::hello, {}, deadline, answer);
        if (cause == 0) {
            is_up_ = true;
            return core::success();
        }
        if (cause == EPROTO) {
            break;
        }
    }
    return core::ErrorPayload(core::Error::CommonError, fmt::format("Peer {}: {}", to_text(peer_), explain(cause)));
}

Ipc::Reply PeerConnection::request(Operation operation, std::span<const std::byte> payload, milliseconds deadline) {
    if (payload.size() + sizeof(MessageHeader) > max_message_bytes) {
        return {EMSGSIZE, {}};
    }
    const auto end = Clock::now() + deadline;
    int cause = is_connected() ? 0 : ECONNREFUSED;
    if (cause == 0 && !is_up_) {
        cause = probe();
    }
    Ipc::Reply answer;
    if (cause == 0) {
        cause = exchange(operation, payload, end, answer);
    }
    if (cause != 0) {
        mark_down(cause);
        return {cause, {}};
    }
    return answer;
}

void PeerConnection::notify(Operation operation, std::span<const std::byte> payload) {
    std::ignore = send(MessageKind::notice, operation, 0, payload);
}

int PeerConnection::exchange(Operation operation, std::span<const std::byte> payload, Clock::time_point deadline,
                             Ipc::Reply& answer) {
    const auto id = ++last_id_;
    return send(MessageKind::request, operation, id, payload) ? await_answer(id, deadline, answer) : ECONNREFUSED;
}

int PeerConnection::await_answer(std::uint32_t id, Clock::time_point deadline, Ipc::Reply& answer) {
    // Messages that are there are looked at even after the deadline, but a peer that never stops sending ends.
    int late_messages = 64;
    for (;;) {
        const auto outcome = take_message(id, answer);
        if (outcome && *outcome != EAGAIN) {
            return *outcome;
        }
        const auto remaining = ceil<milliseconds>(deadline - Clock::now());
        if (remaining <= milliseconds::zero() && (!outcome || --late_messages == 0)) {
            return ETIMEDOUT;
        }
        if (!outcome) {
            const auto events =
                wait_for(socket_, ZMQ_POLLIN, std::min<milliseconds>(remaining, connection_check_interval));
            if ((events & ZMQ_POLLIN) == 0 && !is_connected()) {
                return ECONNRESET;
            }
        }
    }
}

/// One received message: empty when there is none, EAGAIN when it is not the answer to `id` (a late one, or none of
/// this protocol), else 0 or EPROTO.
std::optional<int> PeerConnection::take_message(std::uint32_t id, Ipc::Reply& answer) {
    zmq::message_t received;
    if (!socket_.recv(received, zmq::recv_flags::dontwait)) {
        return std::nullopt;
    }
    const bool is_single = !received.more();
    for (bool more = !is_single; more;) {
        zmq::message_t part;
        std::ignore = socket_.recv(part);
        more = part.more();
    }
    const auto message = decode({received.data<std::byte>(), received.size()});
    if (!is_single || !message) {
        return EAGAIN;
    }
    const auto& header = message->header;
    if (header.version != protocol_version) {
        peer_version_ = header.version;
        return EPROTO;
    }
    if (header.kind != MessageKind::answer || header.id != id) {
        return EAGAIN;
    }
    answer = {header.status, {message->payload.begin(), message->payload.end()}};
    return 0;
}

int PeerConnection::probe() {
    const auto now = Clock::now();
    Ipc::Reply ignored;
    const bool is_due = !last_probe_ || now - *last_probe_ >= timing_.probe_interval;
    int cause = last_probe_ ? await_answer(probe_id_, now, ignored) : ETIMEDOUT;
    if (cause == ETIMEDOUT && is_due) {
        last_probe_ = now;
        probe_id_ = last_id_ + 1;
        cause = exchange(Operation::hello, {}, now + timing_.probe_wait, ignored);
    }
    if (cause == 0) {
        mark_up();
    }
    return cause == ETIMEDOUT ? EHOSTDOWN : cause;
}

bool PeerConnection::send(MessageKind kind, Operation operation, std::uint32_t id, std::span<const std::byte> payload) {
    const auto bytes = encode({.kind = kind, .operation = operation, .sender = own_, .id = id}, payload);
    return socket_.send(zmq::buffer(bytes), zmq::send_flags::dontwait).has_value();
}

bool PeerConnection::is_connected() {
    return (wait_for(socket_, ZMQ_POLLOUT, milliseconds::zero()) & ZMQ_POLLOUT) != 0;
}

void PeerConnection::mark_down(int cause) {
    if (cause == ECONNREFUSED || cause == ECONNRESET) {
        // Whatever comes next is a new process: it is asked at once.
        last_probe_.reset();
    }
    if (std::exchange(is_up_, false)) {
        log(logger_, core::LogLevel::Warning, "Peer {} is down: {}", to_text(peer_), explain(cause));
    }
}

void PeerConnection::mark_up() {
    is_up_ = true;
    last_probe_.reset();
    log(logger_, core::LogLevel::Notice, "Peer {} is up again", to_text(peer_));
}

std::string PeerConnection::explain(int cause) const {
    switch (cause) {
    case ECONNREFUSED:
        return fmt::format("no daemon serves {}", path_);
    case ECONNRESET:
        return fmt::format("the daemon that served {} is gone", path_);
    case ETIMEDOUT:
        return fmt::format("no answer in time on {}", path_);
    case EPROTO:
        return fmt::format("it speaks version {} of the protocol, this side version {}", peer_version_,
                           protocol_version);
    default:
        return std::generic_category().message(cause);
    }
}

} // namespace xpon::ipc
