#pragma once

#include "serializer/contradictions.hpp"
#include "xpon/cfgdb/records/system_management.hpp"

#include <cstdint>

namespace xpon::serializer {

constexpr std::uint32_t subnet_mask(unsigned prefix_length) {
    return prefix_length == 0 ? 0 : ~std::uint32_t{0} << (32 - prefix_length);
}

/// Whether an interface in a subnet of this size (1 to 30 bits) may have the address.
constexpr bool is_host_address(std::uint32_t address, unsigned prefix_length) {
    const auto first_octet = address >> 24U;
    const auto host_part = address & ~subnet_mask(prefix_length);
    return first_octet >= 1 && first_octet <= 223 && first_octet != 127 && host_part != 0 &&
           host_part != ~subnet_mask(prefix_length);
}

/// The rules of a management interface.
template <class Interface>
void check_ip_interface(const Interface& interface, Contradictions& contradictions) {
    if (interface.enabled != 0 && interface.address_mode == cfgdb::AddressMode::fixed &&
        !is_host_address(interface.ip_address, interface.prefix_length)) {
        contradictions.add("ip_address", "a static interface needs a host address");
    }
    if (interface.gateway == 0) {
        return;
    }
    if (((interface.gateway ^ interface.ip_address) & subnet_mask(interface.prefix_length)) != 0) {
        contradictions.add("gateway", "the gateway is outside the subnet");
    } else if (interface.gateway == interface.ip_address) {
        contradictions.add("gateway", "the gateway is the interface itself");
    }
}

inline constexpr const char* address_mode_names[] = {"static", "dhcp"};

} // namespace xpon::serializer
