#pragma once

#include <cstdint>

namespace xpon::cfgdb {

inline constexpr std::uint16_t onts_per_pon_port = 256;
inline constexpr std::uint16_t services_per_ont = 8;

/// PON port and ONT, both from 1, of a flat ONT index from 0.
struct OntNumber {
    unsigned pon_port;
    unsigned ont;
};

constexpr OntNumber ont_number(std::uint16_t index) {
    return {index / onts_per_pon_port + 1U, index % onts_per_pon_port + 1U};
}

} // namespace xpon::cfgdb
