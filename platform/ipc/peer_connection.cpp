#include "ipc/peer_connection.hpp"

#include "ipc/socket_path.hpp"
#include "ipc/zmq_socket.hpp"
#include "xpon/core/call_budget.hpp"

#include <array>
#include <cerrno>
#include <system_error>

#include <fmt/format.h>

namespace xpon::ipc {
namespace {

using std::chrono::ceil;
using std::chrono::milliseconds;

/// How soon a broken connection is tried again.
constexpr milliseconds reconnect_interval{50};

} // namespace

PeerConnection::PeerConnection(zmq::context_t& context, Address own, Address peer, const std::string& path,
                               core::ILogger& logger, const Timing& timing)
    : own_(own), peer_(peer), path_(path), logger_(logger), timing_(timing),
      socket_(make_socket(context, zmq::socket_type::dealer)), monitor_(context, socket_) {
    // Without a connection nothing is queued: a peer that comes back must not be handed the commands of the past.
    socket_.set(zmq::sockopt::immediate, true);
    socket_.set(zmq::sockopt::reconnect_ivl, static_cast<int>(reconnect_interval.count()));
    uninterrupted([this] { socket_.connect("ipc://" + path_); });
}

core::Result<void> PeerConnection::shake_hands() {
    const auto deadline = Clock::now() + timing_.handshake;
    int cause = ECONNREFUSED;
    while (Clock::now() < deadline) {
        monitor_.update();
        if (!monitor_.is_connected()) {
            wait_for_connection(deadline);
            continue;
        }
        Answer answer;
        cause = exchange(hello, {}, deadline, answer);
        if (cause == 0) {
            is_up_ = true;
            return core::success();
        }
        if (cause == EPROTO) {
            break;
        }
    }
    return failure(cause);
}

core::Result<void> PeerConnection::check_presence() {
    Answer ignored;
    if (const int cause = reach(hello, {}, Clock::now() + timing_.handshake, ignored)) {
        return failure(cause);
    }
    return core::success();
}

void PeerConnection::await_first_contact() {
    const auto deadline = Clock::now() + timing_.first_contact;
    for (monitor_.update(); !monitor_.is_connected() && Clock::now() < deadline; monitor_.update()) {
        wait_for_connection(deadline);
    }
    is_up_ = true; // until a request shows that it is not
}

Ipc::Reply PeerConnection::request(std::uint16_t operation, std::span<const std::byte> payload,
                                   Clock::time_point deadline) {
    if (payload.size() + sizeof(MessageHeader) > max_request_bytes) {
        return {EMSGSIZE, {}};
    }
    Answer answer;
    const int cause = reach(operation, payload, deadline, answer);
    return cause != 0 ? Ipc::Reply{cause, {}} : std::move(answer.reply);
}

int PeerConnection::reach(std::uint16_t operation, std::span<const std::byte> payload, Clock::time_point deadline,
                          Answer& answer) {
    monitor_.update();
    int cause = monitor_.is_connected() ? 0 : ECONNREFUSED;
    if (cause == 0 && !is_up_) {
        cause = probe();
    }
    if (cause == 0) {
        cause = exchange(operation, payload, core::CallBudget::limit(deadline), answer);
    }
    if (cause != 0 && (cause != ETIMEDOUT || Clock::now() >= deadline)) {
        mark_down(cause);
    }
    return cause;
}

pollfd PeerConnection::news() {
    return news_of(monitor_.events());
}

void PeerConnection::take_news() {
    monitor_.update();
}

bool PeerConnection::may_be_asked() {
    if (!is_up_ || !monitor_.is_connected()) {
        return false;
    }
    if (owed_ && owed_->breaks == monitor_.breaks()) {
        // The answer that is owed may never come: the peer drops a question that it comes to too late. It answers a
        // hello behind that.
        std::ignore = probe();
        if (owed_) {
            return false;
        }
    }
    owed_.reset();
    return true;
}

std::uint64_t PeerConnection::server() const {
    return monitor_.is_connected() && breaks_at_answer_ == monitor_.breaks() ? server_ : 0;
}

void PeerConnection::forget_server() {
    server_ = 0;
}

std::optional<PeerConnection::Question> PeerConnection::ask(std::uint16_t operation, std::span<const std::byte> payload,
                                                            std::span<const Address> others,
                                                            Clock::time_point deadline) {
    if (payload.size() + others.size_bytes() + sizeof(MessageHeader) > max_request_bytes) {
        return std::nullopt;
    }
    const auto id = ++last_id_;
    const MessageHeader header{
        .kind = MessageKind::request, .operation = operation, .id = id, .deadline = to_wire(deadline)};
    return send(header, payload, others) ? std::optional(Question{id, monitor_.breaks()}) : std::nullopt;
}

void PeerConnection::owe_answer() {
    owed_ = {++last_id_, monitor_.breaks()};
}

bool PeerConnection::notify(std::uint16_t operation, std::span<const std::byte> payload,
                            std::span<const Address> others) {
    return send({.kind = MessageKind::notice, .operation = operation}, payload, others);
}

int PeerConnection::exchange(std::uint16_t operation, std::span<const std::byte> payload, Clock::time_point deadline,
                             Answer& answer) {
    const auto id = ++last_id_;
    // A hello does nothing, and who answers it late is there all the same.
    const MessageHeader header{.kind = MessageKind::request,
                               .operation = operation,
                               .id = id,
                               .deadline = operation == hello ? 0 : to_wire(deadline)};
    while (!send(header, payload)) {
        monitor_.update();
        if (!monitor_.is_connected()) {
            return ECONNREFUSED;
        }
        if (Clock::now() >= deadline) {
            return ETIMEDOUT;
        }
        wait_for_change(deadline);
    }
    return await_answer({id, monitor_.breaks()}, deadline, answer);
}

int PeerConnection::await_answer(const Question& question, Clock::time_point deadline, Answer& answer) {
    // Messages that are there are looked at even after the deadline, but a peer that never stops sending ends.
    int late_messages = 256;
    for (;;) {
        auto outcome = take_message(question.id, answer);
        if (!outcome) {
            monitor_.update();
            if (monitor_.breaks() != question.breaks) {
                outcome = take_message(question.id, answer); // which may have come just before the end
            }
        }
        if (outcome && *outcome != EAGAIN) {
            return *outcome;
        }
        const bool is_late = Clock::now() >= deadline;
        if (!outcome && monitor_.breaks() != question.breaks) {
            return ECONNRESET;
        }
        if (is_late && (!outcome || --late_messages == 0)) {
            return ETIMEDOUT;
        }
        if (!outcome) {
            wait_for_change(deadline);
        }
    }
}

/// One received message: empty when there is none, EAGAIN when it is not the answer to `id` (a late one, or none of
/// this protocol), else 0 or EPROTO.
std::optional<int> PeerConnection::take_message(std::uint32_t id, Answer& answer) {
    zmq::message_t received;
    if (!receive(socket_, received)) {
        return std::nullopt;
    }
    const bool is_single = !received.more();
    for (bool more = !is_single; more;) {
        zmq::message_t part;
        std::ignore = receive(socket_, part);
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
    if (header.kind == MessageKind::answer && owed_ && header.id >= owed_->id) {
        owed_.reset(); // a peer answers in the order in which it was asked
    }
    if (header.kind != MessageKind::answer || header.id != id) {
        return EAGAIN;
    }
    server_ = header.server;
    breaks_at_answer_ = monitor_.breaks();
    answer = {{header.status, {message->payload.begin(), message->payload.end()}}, message->others};
    answer.from.push_back(header.sender);
    return 0;
}

int PeerConnection::probe() {
    const auto now = Clock::now();
    if (probe_.breaks != monitor_.breaks()) {
        // Another process than the one that was probed.
        last_probe_.reset();
    }
    Answer ignored;
    const bool is_due = !last_probe_ || now - *last_probe_ >= timing_.probe_interval;
    int cause = last_probe_ ? await_answer(probe_, now, ignored) : ETIMEDOUT;
    if (cause == ETIMEDOUT && is_due) {
        last_probe_ = now;
        probe_ = {last_id_ + 1, monitor_.breaks()};
        cause = exchange(hello, {}, now + timing_.probe_wait, ignored);
    }
    if (cause == 0) {
        mark_up();
    }
    return cause == ETIMEDOUT ? EHOSTDOWN : cause;
}

bool PeerConnection::send(MessageHeader header, std::span<const std::byte> payload, std::span<const Address> others) {
    header.sender = own_;
    const auto bytes = encode(header, payload, others);
    return ipc::send(socket_, bytes);
}

void PeerConnection::wait_for_connection(Clock::time_point deadline) {
    std::array items{news_of(monitor_.events())};
    wait_for(items, ceil<milliseconds>(deadline - Clock::now()));
}

void PeerConnection::wait_for_change(Clock::time_point deadline) {
    std::array items{news_of(socket_), news_of(monitor_.events())};
    wait_for(items, ceil<milliseconds>(deadline - Clock::now()));
}

void PeerConnection::mark_down(int cause) {
    if (std::exchange(is_up_, false)) {
        log(logger_, core::LogLevel::Warning, "Peer {} is down: {}", to_text(peer_), explain(cause));
    }
}

void PeerConnection::mark_up() {
    last_probe_.reset();
    if (!std::exchange(is_up_, true)) {
        log(logger_, core::LogLevel::Notice, "Peer {} is up again", to_text(peer_));
    }
}

core::ErrorPayload PeerConnection::failure(int cause) const {
    return {core::Error::CommonError, fmt::format("Peer {}: {}", to_text(peer_), explain(cause))};
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
