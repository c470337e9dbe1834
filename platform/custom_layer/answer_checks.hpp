#pragma once

#include "xpon/custom_layer/custom_layer.h"
#include "xpon/custom_layer/device_facts.h"
#include "xpon/ranges/vlan_range.h"

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

} // namespace xpon::custom_layer
