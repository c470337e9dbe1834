#include "serializer/record_memory.hpp"

#include <algorithm>

namespace xpon::serializer {

std::int64_t load_number(const Field& field, const std::byte* record) {
    switch (field.kind) {
    case Kind::i8:
        return load<std::int8_t>(field, record);
    case Kind::i16:
        return load<std::int16_t>(field, record);
    case Kind::u16:
        return load<std::uint16_t>(field, record);
    case Kind::u32:
    case Kind::ipv4:
    case Kind::port_set:
        return load<std::uint32_t>(field, record);
    default:
        return load<std::uint8_t>(field, record);
    }
}

void store_number(const Field& field, std::byte* record, std::int64_t value) {
    switch (field.size) {
    case 1:
        return store(field, record, static_cast<std::uint8_t>(value));
    case 2:
        return store(field, record, static_cast<std::uint16_t>(value));
    default:
        return store(field, record, static_cast<std::uint32_t>(value));
    }
}

std::string_view load_text(const Field& field, const std::byte* record) {
    const auto* text = reinterpret_cast<const char*>(record + field.offset);
    return {text, strnlen(text, field.size)};
}

void store_text(const Field& field, std::byte* record, std::string_view text) {
    std::memset(record + field.offset, 0, field.size);
    std::memcpy(record + field.offset, text.data(), std::min<std::size_t>(text.size(), field.size - 1));
}

} // namespace xpon::serializer
