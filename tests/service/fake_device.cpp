// The custom layer's calls that ask a peer or the device. Those that only compute stay the real ones.

#include "tests/service/fake_device.hpp"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <span>

#include <fmt/format.h>

namespace xpon::test {

FakeDevice& fake_device() {
    static FakeDevice device;
    return device;
}

std::array<std::uint8_t, ont_serial_bin_size> serial_of(std::uint8_t last) {
    return {'S', 'I', 'M', 'U', 0, 0, 0, last, 0, 0};
}

namespace {

int answer(auto&& give) {
    auto& device = fake_device();
    if (device.during_call) {
        device.during_call();
    }
    if (++device.calls == device.failing_call) {
        errno = EIO;
        return -1;
    }
    return give(device);
}

template <class Record>
int give_copy(const std::optional<Record>& record, Record** out) {
    *out = nullptr;
    if (record) {
        *out = static_cast<Record*>(std::malloc(sizeof(Record)));
        std::memcpy(*out, &*record, sizeof(Record));
    }
    return 0;
}

template <class List, class Entry>
int give_list(std::span<const Entry> entries, List** out) {
    *out = static_cast<List*>(std::malloc(sizeof(List) + entries.size_bytes()));
    (*out)->count = static_cast<std::uint32_t>(entries.size());
    (*out)->entries = fake_device().has_entries ? reinterpret_cast<Entry*>(*out + 1) : nullptr;
    std::ranges::copy(entries, reinterpret_cast<Entry*>(*out + 1));
    return 0;
}

/// The ONTs of a set: " 1/1 1/2".
std::string text_of(const Bitmap_ont_range& range) {
    std::string text;
    Bitmap_iterator iterator{};
    std::uint8_t port = 0;
    std::uint16_t ont = 0;
    while (get_next_bitmap_ont_ids(&range, &iterator, &port, &ont) == 0) {
        text += fmt::format(" {}/{}", port + 1, ont + 1);
    }
    return text;
}

template <class Record>
int give_entry(const std::map<std::uint8_t, Record>& records, std::uint8_t number, Record* out) {
    const auto found = records.find(number);
    if (found == records.end()) {
        errno = ENODATA;
        return -1;
    }
    *out = found->second;
    return 0;
}

int note(const std::string& what) {
    return answer([&](auto& device) { return device.journal.push_back(what), 0; });
}

} // namespace
} // namespace xpon::test

using namespace xpon::test;

int custom_layer__get_system_environment_info(Ipc*, System_environment_data* out) {
    return answer([&](auto& device) { return *out = device.environment, 0; });
}

int custom_layer__get_running_firmware_index(std::uint8_t* index) {
    return answer([&](auto& device) { return *index = device.running_slot, 0; });
}

int custom_layer__get_next_boot_firmware_index(std::uint8_t* index) {
    return answer([&](auto& device) { return *index = device.next_boot_slot, 0; });
}

int custom_layer__get_firmware_version_info(std::uint8_t index, Firmware_version_info* out) {
    return answer([&](auto& device) { return *out = device.slots[index], 0; });
}

int custom_layer__get_formatted_uptime_str(char* out) {
    return answer([&](auto& device) { return std::ranges::copy(device.uptime, out), 0; });
}

int custom_layer__get_factory_info(Factory_info* out) {
    return answer([&](auto& device) { return *out = device.factory, 0; });
}

int convert_factory_device_name_to_short_device_name(const char* factory_name, char* short_name) {
    return answer([&](auto&) { return *std::copy_n(factory_name, std::strcspn(factory_name, " "), short_name) = 0; });
}

int custom_layer__get_front_ports_link_states(Ipc*, Bitmap_uplink_port_range* link_up) {
    return answer([&](auto& device) { return *link_up = device.link_up, 0; });
}

int custom_layer__get_front_port_info(Ipc*, std::uint8_t port, Front_port_info* out) {
    return answer([&](auto& device) { return give_entry(device.front_ports, port, out); });
}

int custom_layer__get_front_port_sfp_eddi(Ipc*, std::uint8_t port, Front_port_sfp_eddi* out) {
    return answer([&](auto& device) { return give_entry(device.front_port_eddi, port, out); });
}

int custom_layer__get_pon_ports_states(Ipc*, Pon_ports_states** out) {
    return answer([&](auto& device) { return give_copy(device.pon_states, out); });
}

int custom_layer__get_pon_ports_sfp_extended_information(Ipc*, Pon_ports_sfp_extended_information** out) {
    return answer([&](auto& device) { return give_copy(device.pon_modules, out); });
}

int custom_layer__get_pon_port_type(Ipc*, std::uint8_t, Pon_port_type* out) {
    return answer([&](auto& device) { return *out = device.pon_type, 0; });
}

int custom_layer__get_ont_state_info_by_range(Ipc*, const Bitmap_ont_range*, Ont__get_state_info_response** out) {
    return answer([&](auto& device) { return give_list(std::span<const Ont__state_info>(device.activated), out); });
}

int custom_layer__get_ont_unactivated_by_range(Ipc*, const Bitmap_pon_port_range*, Ont_unactivated_info** out) {
    return answer(
        [&](auto& device) { return give_list(std::span<const Ont_unactivated_entry>(device.unactivated), out); });
}

int custom_layer__get_list_log_files(const void*, int, char*** names, std::uint32_t* count) {
    return answer([&](auto& device) {
        *count = static_cast<std::uint32_t>(device.log_files.size());
        *names = static_cast<char**>(std::calloc(*count, sizeof(char*)));
        std::ranges::transform(device.log_files, *names,
                               [](auto* name) { return name == nullptr ? nullptr : ::strdup(name); });
        return 0;
    });
}

int custom_layer__generating_engine_id(Ipc*, Snmp_environment_data* out) {
    return answer([&](auto& device) { return *out = device.snmp, 0; });
}

int custom_layer__get_ont_information_by_index(Ipc*, Ont_information_kind kind, std::uint8_t port, std::uint16_t ont,
                                               void** out) {
    return answer([&](auto& device) {
        device.journal.push_back(fmt::format("counters {} of {}/{}", static_cast<unsigned>(kind), port, ont));
        *out = nullptr;
        if (const auto found = device.counters.find(kind); found != device.counters.end()) {
            *out = std::malloc(found->second.size());
            std::memcpy(*out, found->second.data(), found->second.size());
        }
        return 0;
    });
}

int custom_layer__get_dhcp_session(Ipc*, Dhcp_get_sessions_msg** out) {
    return answer([&](auto& device) { return give_list(std::span<const Dhcp_session>(device.leases), out); });
}

int custom_layer__get_pppoe_session(Ipc*, Pppoe_get_sessions_msg** out) {
    return answer([&](auto& device) { return give_list(std::span<const Pppoe_session>(device.pppoe_sessions), out); });
}

int custom_layer__get_igmp_snooping_groups_unsafe(Ipc*, std::uint16_t id, Igmp_vlan_info** out) {
    return answer([&](auto& device) {
        const auto found = device.vlans.find(id);
        const auto vlan = found == device.vlans.end() ? FakeDevice::Vlan{} : found->second;
        const std::span<const Igmp_group> groups(vlan.groups);
        *out = static_cast<Igmp_vlan_info*>(std::malloc(sizeof(Igmp_vlan_info) + groups.size_bytes()));
        auto* const first = reinterpret_cast<Igmp_group*>(*out + 1);
        **out = {.vlan = id,
                 .is_snooping = vlan.is_snooping,
                 .group_count = static_cast<std::uint16_t>(groups.size()),
                 .groups = device.has_entries ? first : nullptr};
        std::ranges::copy(groups, first);
        return 0;
    });
}

int custom_layer__get_mac_table(Ipc*, Bcm_get_mac_table_response** out) {
    return answer([&](auto& device) { return give_list(std::span<const Bcm_mac_entry>(device.mac_table), out); });
}

int custom_layer__get_mac_table_by_ont_range(Ipc*, const Bitmap_ont_range* range, Bcm_get_mac_table_response** out) {
    return answer([&](auto& device) {
        device.journal.push_back("mac_table" + text_of(*range));
        return give_list(std::span<const Bcm_mac_entry>(device.mac_table), out);
    });
}

int custom_layer__reboot(int when) {
    return note(fmt::format("reboot {}", when));
}

int custom_layer__reconfigure_olt() {
    return note("reconfigure_olt");
}

int custom_layer__update_firmware(const char* path) {
    return note(fmt::format("update_firmware {}", path));
}

int custom_layer__select_image(Ipc*, std::uint32_t selector, void* reserved) {
    return note(fmt::format("select_image {} {}", selector, reserved == nullptr ? "null" : "not null"));
}

int custom_layer__reconfigure_pon_port(Ipc*, const Bitmap_pon_port_range* range) {
    std::string text = "reconfigure_pon_port";
    Bitmap_iterator iterator{};
    for (std::uint8_t port = 0; get_next_bitmap_pon_port_ids(range, &iterator, &port) == 0;) {
        text += fmt::format(" {}", port);
    }
    return note(text);
}

int custom_layer__reconfigure_ont(Ipc*, const Bitmap_ont_range* range) {
    return note("reconfigure_ont" + text_of(*range));
}

int custom_layer__omci_default(Ipc*, const Bitmap_ont_range* range) {
    return note("omci_default" + text_of(*range));
}

int custom_layer__omci_reboot(Ipc*, const Bitmap_ont_range* range) {
    return note("omci_reboot" + text_of(*range));
}
