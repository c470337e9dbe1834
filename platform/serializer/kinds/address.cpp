#include "serializer/ipv4_text.hpp"
#include "serializer/kinds/kind_functions.hpp"
#include "serializer/record_memory.hpp"
#include "xpon/peer_side/serial_bytes.hpp"

#include <array>
#include <charconv>
#include <string_view>

#include <fmt/format.h>

namespace xpon::serializer {
namespace {

using Mac = std::array<std::uint8_t, 6>;

void read_ipv4(const Field& field, const cJSON& value, std::byte* record, FieldErrors& errors, const Path& path) {
    const auto text = expect_string(value, errors, path);
    if (!text) {
        return;
    }
    const auto address = parse_ipv4(*text);
    if (!address) {
        return errors.add(Json_errors::bad_ipv4_address, path, {*text});
    }
    if (*address < field.min || *address > field.max) {
        const auto lower = format_ipv4(static_cast<std::uint32_t>(field.min));
        const auto upper = format_ipv4(static_cast<std::uint32_t>(field.max));
        return errors.add(Json_errors::out_of_range, path, {*text, std::string_view(lower), std::string_view(upper)});
    }
    store_number(field, record, *address);
}

Tree write_ipv4(const Field& field, const std::byte* record, FieldErrors&, const Path&) {
    return owned(cJSON_CreateString(format_ipv4(load<std::uint32_t>(field, record)).c_str()));
}

void set_nothing(const Field&, std::byte*) {}

std::optional<Mac> parse_mac(std::string_view text) {
    Mac mac{};
    constexpr std::size_t octet_size = 3; // two digits and a colon
    if (text.size() != mac.size() * octet_size - 1) {
        return {};
    }
    for (std::size_t i = 0; i < mac.size(); ++i) {
        const auto octet = text.substr(i * octet_size, 2);
        const auto [end, fault] = std::from_chars(octet.begin(), octet.end(), mac[i], 16);
        if (fault != std::errc() || end != octet.end() || (i > 0 && text[i * octet_size - 1] != ':')) {
            return {};
        }
    }
    return mac;
}

void read_mac(const Field& field, const cJSON& value, std::byte* record, FieldErrors& errors, const Path& path) {
    const auto text = expect_string(value, errors, path);
    if (!text) {
        return;
    }
    if (const auto mac = parse_mac(*text)) {
        return store(field, record, *mac);
    }
    errors.add(Json_errors::bad_mac_address, path, {*text});
}

Tree write_mac(const Field& field, const std::byte* record, FieldErrors&, const Path&) {
    return owned(cJSON_CreateString(fmt::format("{:02X}", fmt::join(load<Mac>(field, record), ":")).c_str()));
}

constexpr int serial_size = std::tuple_size_v<decltype(serial_bytes(0))>;
constexpr int significant_serial_size = sizeof(std::uint64_t);

void read_serial(const Field& field, const cJSON& value, std::byte* record, FieldErrors& errors, const Path& path) {
    if (!expect_array(value, errors, path)) {
        return;
    }
    const auto size = cJSON_GetArraySize(&value);
    if (size != serial_size) {
        return errors.add(Json_errors::bad_serial_size, path,
                          {static_cast<double>(serial_size), static_cast<double>(size)});
    }
    std::uint64_t serial = 0;
    std::size_t position = 0;
    for (const cJSON* item = value.child; item != nullptr; item = item->next, ++position) {
        const bool is_significant = position < significant_serial_size;
        const auto byte = expect_integer(*item, 0, is_significant ? 255 : 0, errors, Path(position, &path));
        if (is_significant) {
            serial = (serial << 8U) | static_cast<std::uint64_t>(byte.value_or(0));
        }
    }
    store(field, record, serial);
}

Tree write_serial(const Field& field, const std::byte* record, FieldErrors&, const Path&) {
    auto array = owned(cJSON_CreateArray());
    for (const auto byte : serial_bytes(load<std::uint64_t>(field, record))) {
        append(*array, make_integer(byte));
    }
    return array;
}

} // namespace

constinit const KindFunctions ipv4_functions{set_default_number, read_ipv4, write_ipv4, copy_bytes};
constinit const KindFunctions mac_functions{set_nothing, read_mac, write_mac, copy_bytes};
constinit const KindFunctions serial_functions{set_nothing, read_serial, write_serial, copy_bytes};

} // namespace xpon::serializer
