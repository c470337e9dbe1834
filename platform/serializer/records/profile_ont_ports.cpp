#include "serializer/field_builders.hpp"
#include "xpon/peer_side/gpon_rates.hpp"

namespace xpon::serializer {
namespace {

using cfgdb::MulticastRange;
using cfgdb::OntEthernetPort;
using cfgdb::ProfileOntPortsCfg;

constexpr const char* speed_names[] = {"auto", "10m", "100m", "1g"};

constexpr Field eth_fields[] = {
    boolean(XPON_MEMBER(OntEthernetPort, enabled), true),
    enumeration(XPON_MEMBER(OntEthernetPort, speed), speed_names, OntEthernetPort::Speed::automatic),
    number(XPON_MEMBER(OntEthernetPort, mac_limit), 0, 255, 16),
    number(XPON_MEMBER(OntEthernetPort, ingress_kbps), 0, 10000000, 0),
    number(XPON_MEMBER(OntEthernetPort, egress_kbps), 0, 10000000, 0),
    boolean(XPON_MEMBER(OntEthernetPort, loop_detection), false),
};
constexpr Table eth = make_table<OntEthernetPort>("OntEthernetPort", eth_fields);

constexpr std::uint32_t lowest_group = address(224, 0, 1, 0); // below are groups that are never routed
constexpr std::uint32_t highest_group = address(239, 255, 255, 255);

constexpr Field range_fields[] = {
    ipv4(XPON_MEMBER(MulticastRange, first), address(239, 0, 0, 0), lowest_group, highest_group),
    ipv4(XPON_MEMBER(MulticastRange, last), highest_group, lowest_group, highest_group),
};
constexpr Table range = make_table<MulticastRange>("MulticastRange", range_fields);

constexpr const char* igmp_version_names[] = {"v2", "v3"};
constexpr const char* igmp_mode_names[] = {"snooping", "spr", "proxy"};
constexpr const char* codec_names[] = {"pcma", "pcmu", "g729", "g722"};

constexpr Field telephone_port = boolean(element_member<std::uint8_t>, false);

constexpr Field fields[] = {
    name(XPON_MEMBER(ProfileOntPortsCfg, name)),
    array(XPON_MEMBER(ProfileOntPortsCfg, eth), eth),
    boolean(XPON_MEMBER(ProfileOntPortsCfg, veip_enabled), true),
    boolean(XPON_MEMBER(ProfileOntPortsCfg, rf_video), false),
    enumeration(XPON_MEMBER(ProfileOntPortsCfg, igmp_version), igmp_version_names, ProfileOntPortsCfg::IgmpVersion::v3),
    enumeration(XPON_MEMBER(ProfileOntPortsCfg, igmp_mode), igmp_mode_names, ProfileOntPortsCfg::IgmpMode::snooping),
    boolean(XPON_MEMBER(ProfileOntPortsCfg, immediate_leave), true),
    number(XPON_MEMBER(ProfileOntPortsCfg, max_groups), 0, 255, 16),
    number(XPON_MEMBER(ProfileOntPortsCfg, max_multicast_kbps), 0, gpon_downstream_kbps, 0),
    list(XPON_MEMBER(ProfileOntPortsCfg, multicast_ranges), XPON_MEMBER(ProfileOntPortsCfg, multicast_ranges_count),
         range),
    array(XPON_MEMBER(ProfileOntPortsCfg, pots), telephone_port),
    text(XPON_MEMBER(ProfileOntPortsCfg, sip_proxy), Characters::host),
    text(XPON_MEMBER(ProfileOntPortsCfg, sip_registrar), Characters::host),
    number(XPON_MEMBER(ProfileOntPortsCfg, sip_port), 1, 65535, 5060),
    number(XPON_MEMBER(ProfileOntPortsCfg, sip_expires_s), 60, 86400, 3600),
    enumeration(XPON_MEMBER(ProfileOntPortsCfg, codec), codec_names, ProfileOntPortsCfg::Codec::pcma),
};

void rules(const ProfileOntPortsCfg& profile, Contradictions& contradictions) {
    for (std::size_t i = 0; i < profile.multicast_ranges_count; ++i) {
        if (profile.multicast_ranges[i].first > profile.multicast_ranges[i].last) {
            contradictions.add_in("multicast_ranges", i, "last", "first is greater than last");
        }
    }
    if ((profile.pots[0] != 0 || profile.pots[1] != 0) && profile.sip_proxy[0] == '\0') {
        contradictions.add("sip_proxy", "a telephone port needs a proxy");
    }
}

constexpr Table table =
    make_table<ProfileOntPortsCfg>("ProfileOntPortsCfg", fields, record_rules<ProfileOntPortsCfg, rules>, "ports");

} // namespace

template <>
const Table& record_table<ProfileOntPortsCfg>() {
    return table;
}

} // namespace xpon::serializer
