// The calls of the custom layer about counters and subscribers' traffic.

#include "tests/service/fake_answers.hpp"

#include <fmt/format.h>

using namespace xpon::test;

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

int custom_layer__refresh_igmp_snooping_groups(Ipc*) {
    return answer([](auto&) { return 0; });
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
