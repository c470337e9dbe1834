#pragma once

/// What the checks of a commit may find fault with, in the words that a client reads.
namespace xpon::cfgdb::fault_text {

inline constexpr const char* no_management = "No management interface is enabled";
inline constexpr const char* networks_overlap = "Management networks overlap";
inline constexpr const char* is_management_vlan = "VLAN {} is the management VLAN";
inline constexpr const char* vlan_not_carried = "VLAN {} is on no enabled front port";
inline constexpr const char* port_taken = "Front port {} is already in port channel {}";
inline constexpr const char* too_few_members = "Port channel has {} members, needs {}";
inline constexpr const char* no_such_port = "Front port {} does not exist";
inline constexpr const char* ports_differ = "Front ports {} and {} differ in {}";
inline constexpr const char* undefined_profile = "Undefined {} profile {}";
inline constexpr const char* undefined_template = "Undefined template {}";
inline constexpr const char* serial_taken = "ONT serial is already used by ONT {}/{}";
inline constexpr const char* two_roles = "VLAN {} is used both as {} and as {}";
inline constexpr const char* no_c_vlan = "One-to-one service has no C-VLAN";
inline constexpr const char* pair_taken = "VLAN pair {}.{} is already used by ONT {}/{} service {}";
inline constexpr const char* clash_on_port = "Services {} and {} clash on port {}";
inline constexpr const char* same_vlans = "Services {} and {} use the same VLANs";
inline constexpr const char* too_much_guaranteed = "Guaranteed upstream bandwidth {} kbit/s exceeds {} kbit/s";
inline constexpr const char* too_many_onts = "PON port has {} ONTs, limit is {}";
inline constexpr const char* no_password = "ONT has no password";
inline constexpr const char* no_telephone_port = "Voice service without telephone port";
inline constexpr const char* no_voice_service = "Telephone line {} without voice service";
inline constexpr const char* no_management_profile = "Management service without management profile";

} // namespace xpon::cfgdb::fault_text
