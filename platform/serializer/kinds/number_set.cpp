#include "serializer/kinds/kind_functions.hpp"
#include "serializer/number_list.hpp"
#include "serializer/record_memory.hpp"

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

void store_vlans(const Field& field, std::byte* record, const NumberSet& vlans) {
    VlanBytes bytes{};
    for (std::size_t vlan = 0; vlan < vlans.size(); ++vlan) {
        bytes[vlan / 8] |= static_cast<std::uint8_t>((vlans[vlan] ? 1U : 0U) << vlan % 8);
    }
    store(field, record, bytes);
}

void set_default_vlans(const Field& field, std::byte* record) {
    store_vlans(field, record, parse_number_list(field.default_text).value());
}

void read_vlans(const Field& field, const cJSON& value, std::byte* record, FieldErrors& errors, const Path& path) {
    const auto text = expect_string(value, errors, path);
    if (!text) {
        return;
    }
    if (const auto vlans = parse_number_list(*text)) {
        return store_vlans(field, record, *vlans);
    }
    errors.add(Json_errors::bad_number_list, path, {*text});
}

Tree write_vlans(const Field& field, const std::byte* record, FieldErrors&, const Path&) {
    const auto bytes = load<VlanBytes>(field, record);
    NumberSet vlans;
    for (std::size_t vlan = 0; vlan < vlans.size(); ++vlan) {
        vlans[vlan] = (bytes[vlan / 8] >> vlan % 8 & 1U) != 0;
    }
    return owned(cJSON_CreateString(format_number_list(vlans).c_str()));
}

} // namespace

constinit const KindFunctions port_set_functions{set_default_number, read_ports, write_ports, copy_bytes};
constinit const KindFunctions vlan_set_functions{set_default_vlans, read_vlans, write_vlans, copy_bytes};

} // namespace xpon::serializer
