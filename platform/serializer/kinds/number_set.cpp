#include "ranges/number_list.hpp"
#include "serializer/kinds/kind_functions.hpp"
#include "serializer/record_memory.hpp"
#include "xpon/peer_side/bits.hpp"
#include "xpon/ranges/bitfield.h"

#include <array>

namespace xpon::serializer {
namespace {

using VlanBytes = std::array<std::uint8_t, 512>;

void read_ports(const Field& field, const cJSON& value, std::byte* record, FieldErrors& errors, const Path& path) {
    if (!expect_array(value, errors, path)) {
        return;
    }
    std::uint32_t ports = 0;
    std::size_t position = 0;
    for (const cJSON* item = value.child; item != nullptr && !errors.full(); item = item->next, ++position) {
        const Path item_path(position, &path);
        const auto port = expect_integer(*item, field.min, field.max, errors, item_path);
        if (!port) {
            continue;
        }
        const auto bit = 1U << static_cast<unsigned>(*port - 1);
        if ((ports & bit) != 0) {
            errors.add(Json_errors::repeated_item, item_path, {static_cast<double>(*port)});
        }
        ports |= bit;
    }
    store(field, record, ports);
}

Tree write_ports(const Field& field, const std::byte* record, FieldErrors&, const Path&) {
    const auto ports = load<std::uint32_t>(field, record);
    auto array = owned(cJSON_CreateArray());
    for (unsigned bit = 0; bit < 32; ++bit) {
        if ((ports >> bit & 1U) != 0) {
            append(*array, make_integer(bit + 1));
        }
    }
    return array;
}

/// False for a bad list. An empty text is the empty set.
bool store_vlans(const Field& field, std::byte* record, std::string_view list) {
    ranges::NumberSet vlans;
    if (!list.empty() && ranges::parse_number_list(list, static_cast<std::uint32_t>(field.max), vlans) != 0) {
        return false;
    }
    VlanBytes bytes{};
    for (std::uint32_t vlan = 0; vlan < vlans.size(); ++vlan) {
        if (vlans[vlan]) {
            bitfield_set_bit(bytes.data(), vlans.size(), vlan);
        }
    }
    store(field, record, bytes);
    return true;
}

void set_default_vlans(const Field& field, std::byte* record) {
    store_vlans(field, record, field.default_text);
}

void read_vlans(const Field& field, const cJSON& value, std::byte* record, FieldErrors& errors, const Path& path) {
    const auto text = expect_string(value, errors, path);
    if (text && !store_vlans(field, record, *text)) {
        errors.add(Json_errors::bad_number_list, path, {*text});
    }
}

Tree write_vlans(const Field& field, const std::byte* record, FieldErrors&, const Path&) {
    const auto bytes = load<VlanBytes>(field, record);
    ranges::NumberSet vlans;
    for (auto vlan = static_cast<std::size_t>(field.min); vlan <= static_cast<std::size_t>(field.max); ++vlan) {
        vlans[vlan] = has_bit(bytes, vlan);
    }
    return owned(cJSON_CreateString(ranges::format_number_list(vlans).c_str()));
}

} // namespace

constinit const KindFunctions port_set_functions{set_default_number, read_ports, write_ports, copy_bytes};
constinit const KindFunctions vlan_set_functions{set_default_vlans, read_vlans, write_vlans, copy_bytes};

} // namespace xpon::serializer
