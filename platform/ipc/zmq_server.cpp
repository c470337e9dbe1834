#include "ipc/message.hpp"
#include "ipc/socket_path.hpp"
#include "ipc/zmq_socket.hpp"
#include "xpon/core/guard.hpp"
#include "xpon/core/unique_fd.hpp"
#include "xpon/peer_side/server.hpp"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <map>
#include <system_error>
#include <utility>

#include <sys/socket.h>
#include <sys/un.h>

#include <fmt/format.h>

namespace xpon::ipc {
namespace {

/// Whether a process listens on `path`. ZeroMQ would take the path away from it without a word.
bool is_served(const std::string& path) {
    const core::UniqueFd probe(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
    // EAGAIN: it listens, and its queue is full.
    return ::connect(probe.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 || errno == EAGAIN;
}

/// What a client sent: ZeroMQ's name of its connection, and the message.
struct Envelope {
    zmq::message_t connection;
    zmq::message_t body;
};

class ServedPeer {
public:
    ServedPeer(zmq::context_t& context, Address address, IPeerHandler& handler, core::ILogger& logger)
        : address_(address), handler_(handler), logger_(logger),
          socket_(make_socket(context, zmq::socket_type::router)) {
        socket_.set(zmq::sockopt::router_mandatory, true); // else it drops without a word what finds no room
    }

    ~ServedPeer() {
        std::error_code ignored;
        std::filesystem::remove(path_, ignored);
    }
    ServedPeer(const ServedPeer&) = delete;
    ServedPeer& operator=(const ServedPeer&) = delete;

    void listen(const std::string& path) {
        namespace fs = std::filesystem;
        fs::create_directories(fs::path(path).parent_path());
        uninterrupted([&] { socket_.bind("ipc://" + path); });
        path_ = path;
        // Who may connect may command the OLT.
        fs::permissions(path, fs::perms::owner_read | fs::perms::owner_write);
    }

    zmq::socket_ref socket() {
        return socket_;
    }
    [[nodiscard]] Address address() const {
        return address_;
    }

    /// When the next answer that was kept back is due; never without one.
    [[nodiscard]] Clock::time_point next_due() const {
        return kept_answers_.empty() ? Clock::time_point::max() : kept_answers_.begin()->first;
    }

    void send_due() {
        while (next_due() <= Clock::now()) {
            auto kept = kept_answers_.extract(kept_answers_.begin());
            is_empty_ = false;
            send(kept.mapped().connection, kept.mapped().message);
        }
    }

    /// Whether there was nothing left to receive when last asked, and nothing was sent since: ZeroMQ tells of what
    /// comes once, also whoever is sending then.
    [[nodiscard]] bool is_empty() const {
        return is_empty_;
    }

    /// Serves what has arrived; a busy client cannot keep the others waiting.
    void serve() {
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

private:
    /// False when nothing is there. A message of too many or too few parts comes with an empty body.
    bool receive(Envelope& envelope) {
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

    void process(Envelope& envelope, const Message& message) {
        const auto& header = message.header;
        if (header.version != protocol_version) {
            // This side's version in the header is what the client learns from it.
            answer(envelope, header, {EPROTONOSUPPORT, {}, {}});
            return;
        }
        const ServerRequest request{
            .peer = address_, .client = header.sender, .operation = header.operation, .payload = message.payload};
        if (header.kind == MessageKind::notice) {
            std::ignore = core::guarded(logger_, [&]() -> core::Result<void> {
                handler_.notice(request);
                return core::success();
            });
        } else if (header.kind == MessageKind::request && !is_given_up(header)) {
            answer(envelope, header, ask_handler(request));
        }
    }

    /// Its asker has told its own client that it failed: what it asked for must not happen any more.
    static bool is_given_up(const MessageHeader& header) {
        return header.deadline != 0 && header.deadline <= to_wire(Clock::now());
    }

    ServerAnswer ask_handler(const ServerRequest& request) {
        const bool is_hello = request.operation == hello;
        auto answer = core::guarded(logger_, [&]() -> core::Result<ServerAnswer> {
            return is_hello ? handler_.greet(request) : handler_.handle(request);
        });
        if (!answer) {
            return {EIO, {}, {}};
        }
        const bool fits = answer.value().payload.size() + sizeof(MessageHeader) <= max_message_bytes;
        return fits ? std::move(answer).value() : ServerAnswer{EMSGSIZE, {}, {}};
    }

    void answer(Envelope& envelope, const MessageHeader& asked, const ServerAnswer& answer) {
        auto bytes = encode({.kind = MessageKind::answer,
                             .operation = asked.operation,
                             .sender = address_,
                             .id = asked.id,
                             .status = answer.status},
                            answer.payload);
        if (answer.delay <= std::chrono::milliseconds::zero()) {
            send(envelope.connection, bytes);
        } else if (kept_answers_.size() < most_kept_answers) {
            kept_answers_.emplace(Clock::now() + answer.delay,
                                  KeptAnswer{std::move(envelope.connection), std::move(bytes)});
        }
    }

    /// A client that is gone or does not read loses its answer.
    void send(zmq::message_t& connection, std::span<const std::byte> bytes) {
        try {
            const bool has_room = sent_if_room(socket_, [&] {
                return socket_.send(connection, zmq::send_flags::dontwait | zmq::send_flags::sndmore);
            });
            if (has_room) {
                std::ignore = ipc::send(socket_, bytes);
            }
        } catch (const zmq::error_t& error) {
            if (error.num() != EHOSTUNREACH) {
                throw;
            }
        }
    }

    struct KeptAnswer {
        zmq::message_t connection;
        std::vector<std::byte> message;
    };
    /// Clients that go on asking a slow peer must not fill the memory.
    static constexpr std::size_t most_kept_answers = 1024;

    Address address_;
    IPeerHandler& handler_;
    core::ILogger& logger_;
    zmq::socket_t socket_;
    std::multimap<Clock::time_point, KeptAnswer> kept_answers_;
    std::string path_; ///< of the socket that this object made; empty before
    bool is_empty_ = false;
};

class ZmqServer : public IServer {
public:
    explicit ZmqServer(const std::shared_ptr<core::ILogger>& logger) : logger_(logger) {}

    core::Result<void> bind(Address peer, IPeerHandler& handler) override {
        return core::guarded(*logger_, [&]() -> core::Result<void> {
            BOOST_OUTCOME_TRY(const auto path, socket_path(peer));
            if (is_served(path)) {
                return core::ErrorPayload(core::Error::Already,
                                          fmt::format("{}: another process serves this address", path));
            }
            auto served = std::make_unique<ServedPeer>(context_, peer, handler, *logger_);
            try {
                served->listen(path);
            } catch (const zmq::error_t& error) {
                return core::ErrorPayload(core::Error::CommonError, fmt::format("{}: {}", path, error.what()));
            }
            peers_.push_back(std::move(served));
            return core::success();
        });
    }

    core::Result<void> unbind(Address peer) override {
        const auto removed = std::erase_if(peers_, [&](const auto& served) { return served->address() == peer; });
        if (removed == 0) {
            return core::ErrorPayload(core::Error::Empty, "The address is not served");
        }
        return core::success();
    }

    core::Result<void> serve(std::chrono::milliseconds timeout, std::span<pollfd> others) override {
        return core::guarded(*logger_, [&]() -> core::Result<void> {
            auto due = Clock::now() + timeout;
            std::vector<pollfd> items;
            for (const auto& peer : peers_) {
                due = std::min(due, peer->is_empty() ? peer->next_due() : Clock::time_point());
                items.push_back(news_of(peer->socket()));
            }
            items.insert(items.end(), others.begin(), others.end());
            wait_for(items, std::chrono::ceil<std::chrono::milliseconds>(due - Clock::now()));
            std::copy(items.end() - std::ssize(others), items.end(), others.begin());
            for (std::size_t index = 0; index < peers_.size(); ++index) {
                auto& peer = *peers_.at(index);
                peer.send_due();
                if (items.at(index).revents != 0 || !peer.is_empty()) {
                    peer.serve();
                }
            }
            return core::success();
        });
    }

private:
    std::shared_ptr<core::ILogger> logger_;
    zmq::context_t context_;
    std::vector<std::unique_ptr<ServedPeer>> peers_;
};

} // namespace

core::Result<std::unique_ptr<IServer>> make_zmq_server(const std::shared_ptr<core::ILogger>& logger) {
    return core::guarded(
        *logger, [&]() -> core::Result<std::unique_ptr<IServer>> { return std::make_unique<ZmqServer>(logger); });
}

} // namespace xpon::ipc
