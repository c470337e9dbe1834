#pragma once

#include "xpon/cfgdb/records/system_management.hpp"

#include <cstdint>

namespace xpon::cfgdb {

/// The out-of-band management port.
struct OobPort {
    enum class Speed : std::uint8_t { automatic, full_10, full_100, full_1000 }; ///< Mbit/s [802.3]

    std::uint8_t enabled;
    std::uint16_t vlan_id; ///< 0 = untagged
    Speed speed;
    AddressMode address_mode;
    std::uint32_t ip_address;
    std::uint8_t prefix_length;
    std::uint32_t gateway;
};

} // namespace xpon::cfgdb
