#pragma once

#include <cstdint>

namespace xpon::cfgdb {

/// How one service joins the user port to the network's VLANs [TR-156, TR-383, G.988 ME 171].
struct ProfileOntCrossConnect {
    enum class ServiceType : std::uint8_t { data, iptv, voip, management };
    enum class Termination : std::uint8_t { bridge, veip, ip_host }; ///< Ethernet ports, router or host of the ONT
    enum class UniMatch : std::uint8_t { untagged, tagged, any };    ///< frames taken at the user port
    enum class VlanModel : std::uint8_t { n_to_1, one_to_one, tls }; ///< [TR-156]
    enum class Tpid : std::uint8_t { c_tag, s_tag };
    enum class PriorityMode : std::uint8_t { fixed, copy }; ///< where the priority code point comes from
    enum class RemoteId : std::uint8_t { none, serial, description, subscriber_id };

    char name[32];
    ServiceType service_type;
    Termination termination;
    std::uint32_t uni_ports; ///< Ethernet ports, for bridge
    UniMatch uni_match;
    std::uint16_t uni_vid; ///< when tagged
    VlanModel vlan_model;
    std::uint16_t s_vid; ///< outer or only VLAN
    std::uint16_t c_vid; ///< inner VLAN; 0 = one tag
    Tpid s_tpid;
    PriorityMode priority_mode;
    std::uint8_t priority;             ///< priority code point, also the queue
    std::uint16_t multicast_vid;       ///< VLAN of the IPTV streams
    std::uint8_t igmp_snooping;        ///< [RFC 4541]
    std::uint8_t dhcp_agent;           ///< option 82 relay agent [RFC 3046]
    std::uint8_t pppoe_agent;          ///< intermediate agent [TR-101]
    RemoteId remote_id;                ///< what the agents insert
    std::uint8_t source_guard;         ///< drop sources without lease or session
    std::uint8_t mac_limit;            ///< addresses per GEM port; 0 = no limit
    std::uint8_t encryption;           ///< AES on the GEM port
    std::uint8_t broadcast_downstream; ///< the broadcast GEM port reaches this service
    std::uint8_t local_switching;      ///< traffic between subscribers of the VLAN
};

} // namespace xpon::cfgdb
