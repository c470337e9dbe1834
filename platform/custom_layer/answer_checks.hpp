#pragma once

#include "xpon/custom_layer/custom_layer.h"
#include "xpon/peer_side/device_facts.h"
#include "xpon/ranges/vlan_range.h"

#include <concepts>

namespace xpon::custom_layer {

// Whether a record that came from elsewhere keeps what its header promises: texts that end, counts within the array.
// Records without such members have nothing to check.

bool is_sound(const System_environment_data& record);
bool is_sound(const Front_port_info& record);
bool is_sound(const Bitmap_uplink_port_range& record);
bool is_sound(const Pon_ports_states& record);
bool is_sound(const Pon_ports_sfp_extended_information& record);
bool is_sound(const Ont__state_info& record);
bool is_sound(const Ont_unactivated_entry& record);
bool is_sound(const Snmp_environment_data& record);
bool is_sound(const Device_facts& record);
bool is_sound(const Igmp_group& record);
bool is_sound(const Bitmap_vlan& record);
bool is_sound(const Bcm_mac_entry& record);
bool is_sound(const Ont__get_gem_port_counters_response& record);
inline bool is_sound(const Front_port_sfp_eddi&) {
    return true;
}
inline bool is_sound(const Pon_port_type&) {
    return true;
}
inline bool is_sound(const Dhcp_session&) {
    return true;
}
inline bool is_sound(const Pppoe_session&) {
    return true;
}
inline bool is_sound(const Ont__get_pon_counters_response&) {
    return true;
}

template <class Record, class... Records>
concept OneOf = (std::same_as<Record, Records> || ...);

/// Counters in arrays with a value per instance.
template <OneOf<Ont_gem_port_pm, Ont_gem_port_nctp_pm, Ont_eth_pm_history_data, Ont_ethernet_pm_2,
                Ont_eth_pm_history_data_3, Ont_gal_eth_pm, Ont_fec_pm_counters, Ont_eth_frame_ext_pm>
              Record>
bool is_sound(const Record& record) {
    return record.count <= max_counter_instances;
}

} // namespace xpon::custom_layer
