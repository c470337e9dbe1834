#include "custom_layer/answer_checks.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <iterator>
#include <span>

namespace xpon::custom_layer {
namespace {

template <std::size_t... Sizes>
bool all_end(const char (&... texts)[Sizes]) {
    return (... && (std::memchr(texts, '\0', Sizes) != nullptr));
}

bool is_sound(const Brd__ps_info& supply) {
    return all_end(supply.model, supply.serial, supply.version, supply.revision, supply.date);
}

bool is_sound(const Sfp_identification& module) {
    return module.condition <= sfp_excluded_from_polling &&
           all_end(module.condition_text, module.vendor, module.part_number, module.revision);
}

bool is_sound(const Firmware_version_info& firmware) {
    return all_end(firmware.version, firmware.built);
}

bool is_sound(const Factory_info& factory) {
    return all_end(factory.device_type, factory.board_version, factory.serial_number, factory.mac_address,
                   factory.device_name);
}

} // namespace

bool is_sound(const System_environment_data& record) {
    return record.fan_count <= std::size(record.fans) && record.temp_sensor_count <= std::size(record.temp_sensors) &&
           std::ranges::all_of(record.power_sources, [](const auto& supply) { return is_sound(supply); });
}

bool is_sound(const Front_port_info& record) {
    return all_end(record.speed, record.media) && is_sound(record.sfp);
}

bool is_sound(const Bitmap_uplink_port_range& record) {
    return record.size <= sizeof record.bits * 8;
}

bool is_sound(const Pon_ports_states& record) {
    return record.count <= std::size(record.ports);
}

bool is_sound(const Pon_ports_sfp_extended_information& record) {
    return record.count <= std::size(record.ports) &&
           std::ranges::all_of(record.ports, [](const auto& port) { return is_sound(port.sfp); });
}

bool is_sound(const Ont__state_info& record) {
    return record.alloc_count <= std::size(record.alloc_ids) &&
           all_end(record.equipment_id, record.hardware_version, record.software_version);
}

bool is_sound(const Ont_unactivated_entry& record) {
    return all_end(record.password);
}

bool is_sound(const Snmp_environment_data& record) {
    return all_end(record.engine_id);
}

bool is_sound(const Igmp_group& record) {
    return record.vlan >= 1 && record.vlan <= max_vlan_id && record.source_count <= std::size(record.sources) &&
           record.port_count <= std::size(record.ports) &&
           std::ranges::all_of(std::span(record.ports, record.port_count),
                               [](const auto& port) { return port.kind <= switch_port_channel; });
}

bool is_sound(const Bitmap_vlan& record) {
    return record.size == max_vlan_id + 1U;
}

bool is_sound(const Bcm_mac_entry& record) {
    return record.kind <= switch_port_channel && record.type <= mac_entry_static;
}

bool is_sound(const Device_facts& record) {
    return device_facts_magic == std::string_view(record.magic, sizeof record.magic) && is_sound(record.factory) &&
           std::ranges::all_of(record.slots, [](const auto& slot) { return is_sound(slot); }) &&
           record.running_slot < std::size(record.slots) && record.next_boot_slot < std::size(record.slots) &&
           std::isfinite(record.uptime_s) && std::isfinite(record.clock_rate);
}

bool is_sound(const Ont__get_gem_port_counters_response& record) {
    return record.count <= std::size(record.entries) &&
           std::ranges::all_of(record.entries, [](const auto& entry) { return entry.group <= gem_port_broadcast; });
}

} // namespace xpon::custom_layer
