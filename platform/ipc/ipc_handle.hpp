#pragma once

#include "xpon/ipc/address.hpp"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

/// The connections of one endpoint, as the platform's own libraries use them behind the opaque pointer that callers
/// of the custom layer hold. Operations are numbers above that of the transport's hello, payloads are bytes: what they
/// mean is between its users. One thread at a time. Nothing here throws.
struct Ipc {
    /// How long a request may take unless its caller knows better.
    static constexpr std::chrono::milliseconds default_deadline{3000};

    struct Reply {
        int status = 0; ///< 0, or the errno value with which the call fails
        std::vector<std::byte> payload;
    };

    Ipc() = default;
    Ipc(const Ipc&) = delete;
    Ipc& operator=(const Ipc&) = delete;
    virtual ~Ipc() = default;

    /// The address that peers know this endpoint by.
    [[nodiscard]] virtual xpon::ipc::Address own_address() const noexcept = 0;

    /// Asks `peer` and waits for its answer, no longer than the time of the core::CallBudget that the caller is in. A
    /// peer does not act on a question that it comes to after that. Statuses of its own beside those of the peer:
    /// ENOTCONN for a peer that was never connected, ECONNREFUSED, at once, when the peer's process is gone, ECONNRESET
    /// when it went while it was asked, ETIMEDOUT when no answer came in time, EHOSTDOWN, at once, while a peer that
    /// timed out has not come back, EPROTO when it speaks another version, EMSGSIZE for too large a payload, EIO for a
    /// fault of this side.
    virtual Reply request(xpon::ipc::Address peer, std::uint16_t operation, std::span<const std::byte> payload,
                          std::chrono::milliseconds deadline) noexcept = 0;

    /// Asks every peer that is up, all at the same time, and waits for their answers. The first in the order of
    /// addresses that says no (EPERM). A peer that gives no answer or any other one is passed over, and one that owes
    /// its answer is not asked again before it is through with the question, answered or dropped.
    virtual std::optional<xpon::ipc::Address> ask_all(std::uint16_t operation, std::span<const std::byte> payload,
                                                      std::chrono::milliseconds deadline) noexcept = 0;

    /// Sends every connected peer a message that wants no answer. Never waits; a peer that cannot take it misses it.
    virtual void notify_all(std::uint16_t operation, std::span<const std::byte> payload) noexcept = 0;
};
