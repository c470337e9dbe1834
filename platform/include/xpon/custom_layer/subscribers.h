#pragma once

#include "xpon/custom_layer/onts.h"

#include <cstdint>

// What the OLT has learned of subscribers' traffic. Addresses are in the order of the wire, most significant byte
// first. Lists are one malloc block each, entries included.

/// A lease that the relay agent saw being given [RFC 2131, RFC 3046].
struct Dhcp_session {
    std::uint8_t pon_port;
    std::uint16_t ont_id;
    std::uint8_t mac[6];
    std::uint8_t service_id;
    std::uint16_t gem_port;
    std::uint16_t outer_vid;
    std::uint8_t ip[4];
    std::uint32_t life_time_msec; ///< left of the lease
    std::uint8_t ont_serial[ont_serial_bin_size];
};

/// Ascending by (port, ONT, service).
struct Dhcp_get_sessions_msg {
    std::uint32_t count;
    Dhcp_session* entries;
};

/// A session that the intermediate agent saw being opened [RFC 2516, TR-101].
struct Pppoe_session {
    std::uint8_t pon_port;
    std::uint16_t ont_id;
    std::uint16_t gem_port;
    std::uint16_t session_id; ///< 0: blocked after too many failed attempts
    std::uint8_t ont_serial[ont_serial_bin_size];
    std::uint32_t duration_sec;
    std::uint32_t unblock_rest_sec; ///< until it may try again; 0 when it is not blocked
    std::uint8_t client_mac[6];
};

/// Ascending by (port, ONT, service).
struct Pppoe_get_sessions_msg {
    std::uint32_t count;
    Pppoe_session* entries;
};

/// A place where frames enter and leave the OLT's switch.
enum Switch_port_kind : std::uint8_t {
    switch_port_cpu = 0,
    switch_port_front = 1,
    switch_port_pon = 2,
    switch_port_channel = 3,
};

/// [RFC 3376]
enum Igmp_filter_mode : std::uint8_t { igmp_include = 1, igmp_exclude = 2 };

struct Igmp_source {
    std::uint8_t ip[4];
    Igmp_filter_mode filter_mode;
};

struct Igmp_member_port {
    Switch_port_kind kind;
    std::uint8_t unit;   ///< from 1
    std::uint8_t number; ///< from 1
    std::uint8_t is_static;
    std::uint32_t expires_sec; ///< 0 for a static member
};

struct Igmp_group {
    std::uint8_t address[4];
    std::uint8_t is_in_deletion_queue; ///< its last member has left
    Igmp_filter_mode filter_mode;
    std::uint16_t vlan;
    std::uint8_t source_count;
    Igmp_source sources[8];
    std::uint8_t port_count;
    Igmp_member_port ports[24];
};

/// The groups of one VLAN, ascending by address.
struct Igmp_vlan_info {
    std::uint16_t vlan;
    std::uint8_t is_snooping; ///< whether the OLT looks into the VLAN's IGMP traffic [RFC 4541]
    std::uint16_t group_count;
    Igmp_group* groups; ///< `group_count` of them, in the same block
};

enum Mac_entry_type : std::uint8_t { mac_entry_dynamic = 0, mac_entry_static = 1 };

struct Bcm_mac_entry {
    std::uint8_t mac[6];
    Switch_port_kind kind;
    std::uint8_t unit;   ///< from 1
    std::uint8_t number; ///< of the port, from 1
    std::uint16_t svid;
    std::uint16_t cvid;   ///< 0 = one tag
    std::uint16_t uvid;   ///< at the subscriber's port; 0 = untagged
    std::uint16_t ont_id; ///< 0 = behind no ONT
    std::uint16_t gem;    ///< 0 = none
    Mac_entry_type type;
};

/// Ascending by (svid, mac).
struct Bcm_get_mac_table_response {
    std::uint32_t count;
    Bcm_mac_entry* entries;
};

extern "C" {

/// Asked from the DHCP relay.
int custom_layer__get_dhcp_session(Ipc* ipc, Dhcp_get_sessions_msg** out);

/// Asked from the PPPoE daemon.
int custom_layer__get_pppoe_session(Ipc* ipc, Pppoe_get_sessions_msg** out);

/// The groups of a VLAN (1 to 4094). Asked from the IGMP daemon, whose answer holds all VLANs: a walk over them in
/// ascending order that takes no longer than a second sees one answer and costs one question. "Unsafe": the answer is
/// kept between calls, without a lock. ERANGE for no such VLAN.
int custom_layer__get_igmp_snooping_groups_unsafe(Ipc* ipc, std::uint16_t vlan, Igmp_vlan_info** out);

/// All addresses that the switch knows, or those behind the ONTs of a range. Asked from the switch chip.
/// @{
int custom_layer__get_mac_table(Ipc* ipc, Bcm_get_mac_table_response** out);
int custom_layer__get_mac_table_by_ont_range(Ipc* ipc, const Bitmap_ont_range* range, Bcm_get_mac_table_response** out);
/// @}

} // extern "C"
