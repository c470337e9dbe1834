#pragma once

#include "xpon/ipc/address.hpp"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <type_traits>
#include <vector>

namespace xpon::ipc {

/// Raised with every change of a payload's layout: both sides of a device are of one release.
inline constexpr std::uint16_t protocol_version = 4;
inline constexpr std::uint32_t protocol_magic = 0x43504958; // "XIPC"

/// No message is larger, so that a faulty peer cannot make its reader run out of memory.
inline constexpr std::int64_t max_message_bytes = 16 * 1024 * 1024;
/// Questions and notices are short: all records of a configuration are named in a quarter of this.
inline constexpr std::int64_t max_request_bytes = 1024 * 1024;

/// The operation that the transport itself has: whether a peer is there. All other numbers are its users'.
inline constexpr std::uint16_t hello = 1;

enum class MessageKind : std::uint16_t { request = 1, answer = 2, notice = 3 };

/// In front of every message, in the byte order of the machine: peers share it. The first two members never move, so
/// that any two versions can tell that they differ.
struct MessageHeader {
    std::uint32_t magic = protocol_magic;
    std::uint16_t version = protocol_version;
    MessageKind kind = MessageKind::request;
    std::uint16_t operation = hello;
    /// How many addresses stand in front of the payload, and count as a part of it: the other peers of the same process
    /// who are asked or told the same, or who answer the same.
    std::uint16_t others = 0;
    Address sender{};
    std::uint32_t id = 0;    ///< chosen by the asker, repeated in the answer; 0 in a notice
    std::int32_t status = 0; ///< of an answer: 0 or an errno value
    std::uint64_t payload_size = 0;
    /// Of a request: nanoseconds of CLOCK_MONOTONIC, which all processes of a machine share, until when its asker waits
    /// for the answer; 0 when it is welcome at any time.
    std::int64_t deadline = 0;
    /// Of an answer: a random number that tells which process it is from. Peers of one process can be asked together. 0
    /// when they cannot.
    std::uint64_t server = 0;
};
static_assert(std::is_trivially_copyable_v<MessageHeader> && sizeof(MessageHeader) == 48);

using Clock = std::chrono::steady_clock; // on Linux that of CLOCK_MONOTONIC

/// A deadline as the header carries it.
inline std::int64_t to_wire(Clock::time_point deadline) {
    return std::chrono::nanoseconds(deadline.time_since_epoch()).count();
}

/// A message as it was received. `payload` points into the received bytes.
struct Message {
    MessageHeader header;
    std::vector<Address> others;
    std::span<const std::byte> payload;
};

/// The message in `bytes`; empty when they are no message of this protocol or its sizes disagree. Of a message of
/// another version only the version is to be believed.
std::optional<Message> decode(std::span<const std::byte> bytes);

/// The bytes of a message; `header`'s sizes are filled in.
std::vector<std::byte> encode(MessageHeader header, std::span<const std::byte> payload,
                              std::span<const Address> others = {});

} // namespace xpon::ipc
