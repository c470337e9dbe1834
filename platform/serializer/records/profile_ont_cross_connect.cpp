#include "serializer/field_builders.hpp"

namespace xpon::serializer {
namespace {

using cfgdb::ProfileOntCrossConnect;

using Profile = ProfileOntCrossConnect;

constexpr const char* service_type_names[] = {"data", "iptv", "voip", "management"};
constexpr const char* termination_names[] = {"bridge", "veip", "ip_host"};
constexpr const char* uni_match_names[] = {"untagged", "tagged", "any"};
constexpr const char* vlan_model_names[] = {"n_to_1", "one_to_one", "tls"};
constexpr const char* tpid_names[] = {"0x8100", "0x88a8"};
constexpr const char* priority_mode_names[] = {"fixed", "copy"};
constexpr const char* remote_id_names[] = {"none", "serial", "description", "subscriber_id"};

constexpr std::uint32_t first_port = 1;

constexpr Field fields[] = {
    name(XPON_MEMBER(Profile, name)),
    enumeration(XPON_MEMBER(Profile, service_type), service_type_names, Profile::ServiceType::data),
    enumeration(XPON_MEMBER(Profile, termination), termination_names, Profile::Termination::bridge),
    port_set(XPON_MEMBER(Profile, uni_ports), 4, first_port),
    enumeration(XPON_MEMBER(Profile, uni_match), uni_match_names, Profile::UniMatch::untagged),
    number(XPON_MEMBER(Profile, uni_vid), 0, 4094, 0),
    enumeration(XPON_MEMBER(Profile, vlan_model), vlan_model_names, Profile::VlanModel::n_to_1),
    number(XPON_MEMBER(Profile, s_vid), 0, 4094, 0),
    number(XPON_MEMBER(Profile, c_vid), 0, 4094, 0),
    enumeration(XPON_MEMBER(Profile, s_tpid), tpid_names, Profile::Tpid::c_tag),
    enumeration(XPON_MEMBER(Profile, priority_mode), priority_mode_names, Profile::PriorityMode::fixed),
    number(XPON_MEMBER(Profile, priority), 0, 7, 0),
    number(XPON_MEMBER(Profile, multicast_vid), 0, 4094, 0),
    boolean(XPON_MEMBER(Profile, igmp_snooping), false),
    boolean(XPON_MEMBER(Profile, dhcp_agent), false),
    boolean(XPON_MEMBER(Profile, pppoe_agent), false),
    enumeration(XPON_MEMBER(Profile, remote_id), remote_id_names, Profile::RemoteId::serial),
    boolean(XPON_MEMBER(Profile, source_guard), false),
    number(XPON_MEMBER(Profile, mac_limit), 0, 255, 8),
    boolean(XPON_MEMBER(Profile, encryption), true),
    boolean(XPON_MEMBER(Profile, broadcast_downstream), true),
    boolean(XPON_MEMBER(Profile, local_switching), false),
};

void check_service_type(const Profile& profile, Contradictions& contradictions) {
    const bool is_iptv = profile.service_type == Profile::ServiceType::iptv;
    if (is_iptv != (profile.multicast_vid != 0)) {
        contradictions.add("multicast_vid", is_iptv ? "iptv needs a multicast VLAN" : "only iptv has a multicast VLAN");
    }
    if (is_iptv && profile.igmp_snooping == 0) {
        contradictions.add("igmp_snooping", "iptv needs snooping");
    }
    const bool ends_in_ont =
        profile.service_type == Profile::ServiceType::voip || profile.service_type == Profile::ServiceType::management;
    if (ends_in_ont != (profile.termination == Profile::Termination::ip_host)) {
        contradictions.add("termination", "ip_host is for voip and management, and they need it");
    }
}

void check_user_side(const Profile& profile, Contradictions& contradictions) {
    if (profile.termination == Profile::Termination::bridge && profile.uni_ports == 0) {
        contradictions.add("uni_ports", "a bridge needs a port");
    }
    const bool is_tagged = profile.uni_match == Profile::UniMatch::tagged;
    if (is_tagged != (profile.uni_vid != 0)) {
        contradictions.add("uni_vid", is_tagged ? "tagged needs a VLAN" : "only tagged has a VLAN");
    }
}

void check_network_side(const Profile& profile, Contradictions& contradictions) {
    const bool is_tls = profile.vlan_model == Profile::VlanModel::tls;
    if (is_tls && profile.uni_match != Profile::UniMatch::any) {
        contradictions.add("vlan_model", "tls takes any frames");
    }
    if (profile.s_vid == 0) {
        contradictions.add("s_vid", "a service needs an outer VLAN");
    }
    if (is_tls && profile.c_vid != 0) {
        contradictions.add("c_vid", "tls has no inner VLAN");
    }
}

void rules(const Profile& profile, Contradictions& contradictions) {
    if (profile.name[0] == '\0') {
        return; // undefined
    }
    check_service_type(profile, contradictions);
    check_user_side(profile, contradictions);
    check_network_side(profile, contradictions);
    if (profile.source_guard != 0 && profile.dhcp_agent == 0 && profile.pppoe_agent == 0) {
        contradictions.add("source_guard", "source_guard needs an agent");
    }
}

constexpr Table table = make_table<ProfileOntCrossConnect>(
    "ProfileOntCrossConnect", fields, record_rules<ProfileOntCrossConnect, rules>, "cross-connect");

} // namespace

template <>
const Table& record_table<ProfileOntCrossConnect>() {
    return table;
}

} // namespace xpon::serializer
