#pragma once

#include <cstdint>

namespace xpon::cfgdb {

/// The bandwidth of one T-CONT [G.984.3 7.4].
struct ProfileOntDba {
    enum class TcontType : std::uint8_t { type1, type2, type3, type4, type5 };
    enum class Additional : std::uint8_t { none, non_assured, best_effort }; ///< share of the spare bandwidth

    char name[32];
    TcontType tcont_type;
    std::uint32_t fixed_kbps;   ///< always granted
    std::uint32_t assured_kbps; ///< guaranteed, granted on demand
    std::uint32_t maximum_kbps;
    Additional additional;
    std::uint8_t priority; ///< among best-effort sharers, 1 first
    std::uint8_t weight;   ///< within a priority
    std::uint8_t shared;   ///< services of one ONT with this profile use one T-CONT
};

} // namespace xpon::cfgdb
