#include "ipc/served_peer.hpp"

#include "ipc/zmq_socket.hpp"
#include "xpon/core/guard.hpp"

#include <cerrno>
#include <filesystem>
#include <set>
#include <system_error>
#include <tuple>
#include <utility>

namespace xpon::ipc {
namespace {

/// Its asker has told its own client that it failed: what it asked for must not happen any more.
bool is_given_up(const MessageHeader& header) {
    return header.deadline != 0 && header.deadline <= to_wire(Clock::now());
}

/// Answers that can leave in one message.
struct Alike {
    std::chrono::milliseconds delay;
    int status;

    auto operator<=>(const Alike&) const = default;
};

} // namespace

ServedPeer::ServedPeer(zmq::context_t& context, Address address, const ServingProcess& process, core::ILogger& logger)
    : address_(address), process_(process), logger_(logger), socket_(make_socket(context, zmq::socket_type::router)) {
    socket_.set(zmq::sockopt::router_mandatory, true); // else it drops without a word what finds no room
}

ServedPeer::~ServedPeer() {
    std::error_code ignored;
    std::filesystem::remove(path_, ignored);
}

void ServedPeer::listen(const std::string& path) {
    namespace fs = std::filesystem;
    fs::create_directories(fs::path(path).parent_path());
    uninterrupted([&] { socket_.bind("ipc://" + path); });
    path_ = path;
    // Who may connect may command the OLT.
    fs::permissions(path, fs::perms::owner_read | fs::perms::owner_write);
}

void ServedPeer::send_due() {
    while (next_due() <= Clock::now()) {
        auto kept = kept_answers_.extract(kept_answers_.begin());
        is_empty_ = false;
        send(kept.mapped().connection, kept.mapped().message);
    }
}

void ServedPeer::serve() {
    static constexpr int messages_per_turn = 64;
    Envelope envelope;
    is_empty_ = false;
    for (int count = 0; count < messages_per_turn && !is_empty_; ++count) {
        if (!receive(envelope)) {
            is_empty_ = true;
        } else if (const auto message = decode({envelope.body.data<std::byte>(), envelope.body.size()})) {
            process(envelope, *message);
        }
    }
}

/// False when nothing is there. A message of too many or too few parts comes with an empty body.
bool ServedPeer::receive(Envelope& envelope) {
    if (!ipc::receive(socket_, envelope.connection)) {
        return false;
    }
    envelope.body.rebuild();
    int parts = 1;
    for (bool more = envelope.connection.more(); more; ++parts) {
        std::ignore = ipc::receive(socket_, envelope.body);
        more = envelope.body.more();
    }
    if (parts != 2) {
        envelope.body.rebuild();
    }
    return true;
}

void ServedPeer::process(Envelope& envelope, const Message& message) {
    const auto& header = message.header;
    if (header.version != protocol_version) {
        // This side's version in the header is what the client learns from it.
        answer(envelope, header, {EPROTONOSUPPORT, {}, {}});
        return;
    }
    ServerRequest request{
        .peer = address_, .client = header.sender, .operation = header.operation, .payload = message.payload};
    if (header.kind == MessageKind::notice) {
        tell_handler(request);
        request.is_repeated = true;
        for (const auto other : std::set(message.others.begin(), message.others.end())) {
            request.peer = other;
            tell_handler(request);
        }
    } else if (header.kind == MessageKind::request && !is_given_up(header)) {
        message.others.empty() ? answer(envelope, header, ask_handler(request))
                               : answer_for_all(envelope, message, request);
    }
}

void ServedPeer::tell_handler(const ServerRequest& request) {
    if (const auto found = process_.handlers.find(request.peer); found != process_.handlers.end()) {
        std::ignore = core::guarded(logger_, [&]() -> core::Result<void> {
            found->second->notice(request);
            return core::success();
        });
    }
}

ServerAnswer ServedPeer::ask_handler(const ServerRequest& request) {
    const auto found = process_.handlers.find(request.peer);
    if (found == process_.handlers.end()) {
        return {ECONNREFUSED, {}, {}};
    }
    const bool is_hello = request.operation == hello;
    auto answer = core::guarded(logger_, [&]() -> core::Result<ServerAnswer> {
        return is_hello ? found->second->greet(request) : found->second->handle(request);
    });
    if (!answer) {
        return {EIO, {}, {}};
    }
    const bool fits = answer.value().payload.size() + sizeof(MessageHeader) <= max_message_bytes;
    return fits ? std::move(answer).value() : ServerAnswer{EMSGSIZE, {}, {}};
}

/// Who asks several peers asks for no more than their status.
void ServedPeer::answer_for_all(Envelope& envelope, const Message& message, ServerRequest request) {
    std::set<Address> asked(message.others.begin(), message.others.end());
    asked.insert(address_);
    std::map<Alike, std::vector<Address>> answers;
    for (const auto peer : asked) {
        request.peer = peer;
        const auto answer = ask_handler(request);
        request.is_repeated = request.is_repeated || process_.handlers.contains(peer);
        answers[{answer.delay, answer.status}].push_back(peer);
    }
    for (const auto& [alike, peers] : answers) {
        zmq::message_t connection;
        connection.copy(envelope.connection);
        const MessageHeader header{.kind = MessageKind::answer,
                                   .operation = message.header.operation,
                                   .sender = peers.front(),
                                   .id = message.header.id,
                                   .status = alike.status,
                                   .server = process_.id};
        send_after(alike.delay, connection, encode(header, {}, std::span(peers).subspan(1)));
    }
}

void ServedPeer::answer(Envelope& envelope, const MessageHeader& asked, const ServerAnswer& answer) {
    send_after(answer.delay, envelope.connection,
               encode({.kind = MessageKind::answer,
                       .operation = asked.operation,
                       .sender = address_,
                       .id = asked.id,
                       .status = answer.status,
                       .server = process_.id},
                      answer.payload));
}

void ServedPeer::send_after(std::chrono::milliseconds delay, zmq::message_t& connection,
                            std::vector<std::byte> message) {
    // Clients that go on asking a slow peer must not fill the memory.
    static constexpr std::size_t most_kept_answers = 1024;
    if (delay <= std::chrono::milliseconds::zero()) {
        send(connection, message);
    } else if (kept_answers_.size() < most_kept_answers) {
        kept_answers_.emplace(Clock::now() + delay, KeptAnswer{std::move(connection), std::move(message)});
    }
}

/// A client that is gone or does not read loses its answer.
void ServedPeer::send(zmq::message_t& connection, std::span<const std::byte> bytes) {
    try {
        const bool has_room = sent_if_room(
            socket_, [&] { return socket_.send(connection, zmq::send_flags::dontwait | zmq::send_flags::sndmore); });
        if (has_room) {
            std::ignore = ipc::send(socket_, bytes);
        }
    } catch (const zmq::error_t& error) {
        if (error.num() != EHOSTUNREACH) {
            throw;
        }
    }
}

} // namespace xpon::ipc
