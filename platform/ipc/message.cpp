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
    const auto others_size = header.others * sizeof(Address);
    if (!known_kind || header.payload_size != message.payload.size() || others_size > message.payload.size()) {
        return std::nullopt;
    }
    if (header.others != 0) {
        message.others.resize(header.others);
        std::memcpy(message.others.data(), message.payload.data(), others_size);
        message.payload = message.payload.subspan(others_size);
    }
    return message;
}

std::vector<std::byte> encode(MessageHeader header, std::span<const std::byte> payload,
                              std::span<const Address> others) {
    const auto other_bytes = std::as_bytes(others);
    header.others = static_cast<std::uint16_t>(others.size());
    header.payload_size = other_bytes.size() + payload.size();
    const auto header_bytes = std::as_bytes(std::span(&header, 1));
    std::vector<std::byte> bytes;
    bytes.reserve(header_bytes.size() + other_bytes.size() + payload.size());
    for (const auto part : {header_bytes, other_bytes, payload}) {
        bytes.insert(bytes.end(), part.begin(), part.end());
    }
    return bytes;
}

} // namespace xpon::ipc
