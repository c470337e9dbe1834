#pragma once

#include <cstdint>

namespace xpon::cfgdb {

enum class AddressMode : std::uint8_t { fixed, dhcp }; ///< how an interface of the OLT gets its address

struct AllowedSource {
    std::uint32_t network;
    std::uint8_t prefix_length;
};

/// The in-band management interface, a VLAN on the front ports.
struct GSystemManagement {
    std::uint8_t enabled;
    std::uint16_t vlan_id;
    std::uint8_t priority; ///< priority code point [802.1Q]
    AddressMode address_mode;
    std::uint32_t ip_address;
    std::uint8_t prefix_length;
    std::uint32_t gateway; ///< default route
    std::uint32_t dns_servers[2];
    std::uint8_t web_access; ///< whether the service is reached here
    std::uint8_t ssh_access;
    std::uint8_t telnet_access;
    std::uint8_t snmp_access;
    std::uint8_t allowed_sources_count;
    AllowedSource allowed_sources[8]; ///< none = anyone may manage
};

} // namespace xpon::cfgdb
