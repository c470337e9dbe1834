#pragma once

#include "ipc/connection_monitor.hpp"
#include "ipc/ipc_handle.hpp"
#include "ipc/message.hpp"
#include "xpon/core/logger.hpp"
#include "xpon/core/result.hpp"

#include <chrono>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include <poll.h>
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

    [[nodiscard]] Address peer() const {
        return peer_;
    }

    // For questions and notices to many, of which one connection may carry those of other peers. They know of what
    // happened to the connection until the last take_news().

    /// Readable when there is something to take in.
    [[nodiscard]] pollfd news();
    void take_news();

    /// What is waited for.
    struct Question {
        std::uint32_t id = 0;
        std::uint64_t breaks = 0; ///< before it: with its connection the answer is lost
    };
    /// An answer, and who answers it.
    struct Answer {
        Ipc::Reply reply;
        std::vector<Address> from;
    };

    /// Whether the peer can be asked now: it is up, and owes no answer to a question before.
    [[nodiscard]] bool may_be_asked();
    /// The process that serves the peer, as it says itself; 0 while that is not known.
    [[nodiscard]] std::uint64_t server() const;
    /// It is another one.
    void forget_server();
    /// Asks the peer and `others` of the same process; empty when there is no room to send.
    std::optional<Question> ask(std::uint16_t operation, std::span<const std::byte> payload,
                                std::span<const Address> others, Clock::time_point deadline);
    /// The next answer, which may be that of several. 0, ETIMEDOUT, or why there will be none.
    int await_answer(const Question& question, Clock::time_point deadline, Answer& answer);
    /// The peer did not answer in time. It may still answer other requests in theirs.
    void owe_answer();
    /// It does not answer any more.
    void mark_down(int cause);
    /// Tells the peer, and `others` of the same process. False when there is no room to send.
    bool notify(std::uint16_t operation, std::span<const std::byte> payload, std::span<const Address> others);

private:
    /// 0, or the errno value that says why there was no answer. The peer is marked down then, unless its caller had
    /// less time left than until `deadline`: the peer may be none the worse.
    int reach(std::uint16_t operation, std::span<const std::byte> payload, Clock::time_point deadline, Answer& answer);
    /// The same, of a peer whatever its mark.
    int exchange(std::uint16_t operation, std::span<const std::byte> payload, Clock::time_point deadline,
                 Answer& answer);
    std::optional<int> take_message(std::uint32_t id, Answer& answer);
    int probe();
    [[nodiscard]] bool send(MessageHeader header, std::span<const std::byte> payload,
                            std::span<const Address> others = {});
    /// Until something happens to the connection.
    void wait_for_connection(Clock::time_point deadline);
    /// The same, or to the socket, which had nothing to receive or no room to send.
    void wait_for_change(Clock::time_point deadline);
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
    std::optional<Question> owed_; ///< not waited for to the end
    std::uint16_t peer_version_ = protocol_version;
    std::uint64_t server_ = 0;           ///< as the last answer said,
    std::uint64_t breaks_at_answer_ = 0; ///< which came before the connection broke again
    Question probe_;
    std::optional<Clock::time_point> last_probe_; ///< of the connection that stands
};

} // namespace xpon::ipc
