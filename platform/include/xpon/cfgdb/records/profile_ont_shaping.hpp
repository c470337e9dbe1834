#pragma once

#include <cstdint>

namespace xpon::cfgdb {

struct ShapingQueue {
    enum class Scheduling : std::uint8_t { strict, weighted };

    Scheduling scheduling;
    std::uint8_t weight;
    std::uint32_t min_kbps;          ///< committed, downstream
    std::uint32_t max_kbps;          ///< peak, downstream; 0 = no limit
    std::uint32_t upstream_max_kbps; ///< 0 = no limit
};

/// The rates of one ONT [G.988, ME 277, 278, 280].
struct ProfileOntShaping {
    char name[32];
    std::uint32_t downstream_kbps; ///< 0 = no limit
    std::uint32_t upstream_kbps;   ///< 0 = no limit
    std::uint32_t downstream_burst_bytes;
    ShapingQueue queues[8]; ///< traffic classes, 7 highest
};

} // namespace xpon::cfgdb
