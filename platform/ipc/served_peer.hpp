#pragma once

#include "ipc/message.hpp"
#include "xpon/core/logger.hpp"
#include "xpon/peer_side/server.hpp"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <vector>

#include <zmq.hpp>

namespace xpon::ipc {

/// What the peers of one process have in common: who asks one of them may ask them all.
struct ServingProcess {
    std::uint64_t id = 0; ///< as in the header of answers
    std::map<Address, IPeerHandler*> handlers;
};

/// One peer's socket.
class ServedPeer {
public:
    /// `process` outlives it.
    ServedPeer(zmq::context_t& context, Address address, const ServingProcess& process, core::ILogger& logger);
    ~ServedPeer();
    ServedPeer(const ServedPeer&) = delete;
    ServedPeer& operator=(const ServedPeer&) = delete;

    void listen(const std::string& path);

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

    void send_due();

    /// Whether there was nothing left to receive when last asked, and nothing was sent since: ZeroMQ tells of what
    /// comes once, also whoever is sending then.
    [[nodiscard]] bool is_empty() const {
        return is_empty_;
    }

    /// Serves what has arrived; a busy client cannot keep the others waiting.
    void serve();

private:
    /// What a client sent: ZeroMQ's name of its connection, and the message.
    struct Envelope {
        zmq::message_t connection;
        zmq::message_t body;
    };

    bool receive(Envelope& envelope);
    void process(Envelope& envelope, const Message& message);
    ServerAnswer ask_handler(const ServerRequest& request);
    void tell_handler(const ServerRequest& request);
    void answer_for_all(Envelope& envelope, const Message& message, ServerRequest request);
    void answer(Envelope& envelope, const MessageHeader& asked, const ServerAnswer& answer);
    void send_after(std::chrono::milliseconds delay, zmq::message_t& connection, std::vector<std::byte> message);
    void send(zmq::message_t& connection, std::span<const std::byte> bytes);

    struct KeptAnswer {
        zmq::message_t connection;
        std::vector<std::byte> message;
    };

    Address address_;
    const ServingProcess& process_;
    core::ILogger& logger_;
    zmq::socket_t socket_;
    std::multimap<Clock::time_point, KeptAnswer> kept_answers_;
    std::string path_; ///< of the socket that this object made; empty before
    bool is_empty_ = false;
};

} // namespace xpon::ipc
