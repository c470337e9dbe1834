#include "ipc/message.hpp"

#include <cstring>

namespace xpon::ipc {

std::optional<Message> decode(std::span<const std::byte> bytes) {
    Message message;
    if (bytes.size() < sizeof message.header) {
        return std::nullopt;
    }
    std::memcpy(&message.header, bytes.data(), sizeof message.header);
    message.payload = bytes.subspan(sizeof message.header);
    const auto& header = message.header;
    if (header.magic != protocol_magic) {
        return std::nullopt;
    }
    if (header.version != protocol_version) {
        return message;
    }
    const bool known_kind = header.kind >= MessageKind::request && header.kind <= MessageKind::notice;
    return known_kind && header.payload_size == message.payload.size() ? std::optional(message) : std::nullopt;
}

std::vector<std::byte> encode(MessageHeader header, std::span<const std::byte> payload) {
    header.payload_size = payload.size();
    const auto header_bytes = std::as_bytes(std::span(&header, 1));
    std::vector<std::byte> bytes;
    bytes.reserve(header_bytes.size() + payload.size());
    bytes.insert(bytes.end(), header_bytes.begin(), header_bytes.end());
    bytes.insert(bytes.end(), payload.begin(), payload.end());
    return bytes;
}

} // namespace xpon::ipc
