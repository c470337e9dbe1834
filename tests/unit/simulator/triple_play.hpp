#pragma once

#include "simulator/plant/running_configuration.hpp"

#include <vector>

namespace xpon::simulator {

/// Internet to the router, television at an Ethernet port, telephone and management: as the factory's template has it.
inline std::vector<ServiceSettings> triple_play() {
    using Type = cfgdb::ProfileOntCrossConnect::ServiceType;
    using Termination = cfgdb::ProfileOntCrossConnect::Termination;
    return {
        {.number = 1,
         .tcont = 0,
         .termination = Termination::veip,
         .s_vid = 100,
         .pppoe_agent = true,
         .upstream_kbps = 1024000},
        {.number = 2,
         .tcont = 1,
         .type = Type::iptv,
         .uni_ports = 0b10,
         .s_vid = 200,
         .multicast_vid = 201,
         .upstream_kbps = 1244160},
        {.number = 3,
         .tcont = 2,
         .type = Type::voip,
         .termination = Termination::ip_host,
         .s_vid = 300,
         .dhcp_agent = true,
         .upstream_kbps = 512},
        {.number = 4,
         .tcont = 3,
         .type = Type::management,
         .termination = Termination::ip_host,
         .s_vid = 400,
         .dhcp_agent = true,
         .upstream_kbps = 256},
    };
}

} // namespace xpon::simulator
