#pragma once

#include "ipc/peer_connection.hpp"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace xpon::ipc {

/// Not owned.
using Peers = std::vector<PeerConnection*>;

/// Has each take in what happened to its connection. A system call when nothing did, not one for each.
void take_news(const Peers& peers);

/// Those of one process together. One whose process is not known stands for itself.
std::vector<Peers> by_process(const Peers& peers);

/// A question to several peers of one process. It goes over the connection of one of them, the carrier: what costs is
/// the message, not the peer.
class GroupQuestion {
public:
    GroupQuestion(const Peers& peers, std::uint16_t operation, std::span<const std::byte> payload,
                  Clock::time_point deadline);

    /// Waits until all have answered. Who says no (EPERM) is added to `refusing`. Returns those that are to be asked
    /// again, without this carrier: it went or took no question, or another process serves them.
    Peers finish(std::vector<Address>& refusing);

private:
    void take(const PeerConnection::Answer& answer, std::vector<Address>& refusing);

    PeerConnection* carrier_;
    Peers waiting_; ///< those that have not answered
    Peers elsewhere_;
    Clock::time_point deadline_;
    std::optional<PeerConnection::Question> question_;
};

/// Sends a message that wants no answer to peers of one process.
void notify(const Peers& peers, std::uint16_t operation, std::span<const std::byte> payload);

} // namespace xpon::ipc
