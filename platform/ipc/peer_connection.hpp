#pragma once

#include "ipc/connection_monitor.hpp"
#include "ipc/ipc_handle.hpp"
#include "ipc/message.hpp"
#include "xpon/core/logger.hpp"
#include "xpon/core/result.hpp"

#include <chrono>
#include <optional>
#include <span>
#include <string>

#include <zmq.hpp>

namespace xpon::ipc {

/// How patient an endpoint is.
struct Timing {
    std::chrono::milliseconds handshake{3000};
    /// How long a daemon may take to be there where no handshake is asked for.
    std::chrono::milliseconds first_contact{250};
    std::chrono::milliseconds probe_interval{1000}; ///< shortest time between two probes of a peer that is down
    /// How long a request to a peer that is down waits for the answer to its probe: long enough for a peer that is
    /// back, short enough that a dead one costs its callers next to nothing.
    std::chrono::milliseconds probe_wait{20};
};

/// The connection to one peer. ZeroMQ makes it again whenever it breaks.
///
/// A peer is down once a request to it had no answer, and up again once it answers a probe (a hello). Both changes
/// are logged.
class PeerConnection {
public:
    PeerConnection(zmq::context_t& context, Address own, Address peer, const std::string& path, core::ILogger& logger,
                   const Timing& timing);

    core::Result<void> shake_hands();
    /// Whether the peer answers now. Unlike a handshake this does not wait for a daemon that is not there.
    core::Result<void> check_presence();
    /// Waits until there is a daemon to ask, if there is one: a new connection is not made at once.
    void await_first_contact();
    /// The statuses of Ipc::request.
    Ipc::Reply request(std::uint16_t operation, std::span<const std::byte> payload, Clock::time_point deadline);
    void notify(std::uint16_t operation, std::span<const std::byte> payload);

    /// A request whose answer is fetched later, by its number; empty when the peer is down, does not take it at once,
    /// or owes the answer to one before.
    std::optional<std::uint32_t> begin_request(std::uint16_t operation, std::span<const std::byte> payload,
                                               Clock::time_point deadline);
    /// Empty without an answer. A peer that takes longer may still answer other requests in their time.
    std::optional<Ipc::Reply> finish_request(std::uint32_t id, Clock::time_point deadline);

private:
    /// 0, or the errno value that says why there was no answer. The peer is marked down then, unless its caller had
    /// less time left than until `deadline`: the peer may be none the worse.
    int reach(std::uint16_t operation, std::span<const std::byte> payload, Clock::time_point deadline,
              Ipc::Reply& answer);
    /// The same, of a peer whatever its mark.
    int exchange(std::uint16_t operation, std::span<const std::byte> payload, Clock::time_point deadline,
                 Ipc::Reply& answer);
    int await_answer(std::uint32_t id, Clock::time_point deadline, Ipc::Reply& answer);
    std::optional<int> take_message(std::uint32_t id, Ipc::Reply& answer);
    int probe();
    [[nodiscard]] bool send(MessageHeader header, std::span<const std::byte> payload);
    /// Until something happens to the connection.
    void wait_for_connection(Clock::time_point deadline);
    /// The same, or to the socket, which had nothing to receive or no room to send.
    void wait_for_change(Clock::time_point deadline);
    void mark_down(int cause);
    void mark_up();
    [[nodiscard]] std::string explain(int cause) const;
    [[nodiscard]] core::ErrorPayload failure(int cause) const;

    Address own_;
    Address peer_;
    std::string path_;
    core::ILogger& logger_;
    Timing timing_;
    zmq::socket_t socket_;
    ConnectionMonitor monitor_;
    bool is_up_ = false;
    std::uint32_t last_id_ = 0;
    /// An answer that was not waited for to the end.
    struct Owed {
        std::uint32_t id;
        std::uint64_t breaks; ///< with its connection the answer is lost
    };
    std::optional<Owed> owed_;
    std::uint16_t peer_version_ = protocol_version;
    std::uint32_t probe_id_ = 0;
    std::optional<Clock::time_point> last_probe_; ///< of the connection that stands
    std::uint64_t breaks_at_probe_ = 0;
};

} // namespace xpon::ipc
