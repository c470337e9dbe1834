#pragma once

#include <chrono>

namespace xpon::simulator {

/// The plant's time: since the OLT's start. May be before it, for what was so already then.
using PlantTime = std::chrono::milliseconds;

/// Of what is under way, `until` is `never`.
struct Stretch {
    PlantTime since;
    PlantTime until;
};

inline constexpr PlantTime never = PlantTime::max();

constexpr double seconds_of(PlantTime time) {
    return static_cast<double>(time.count()) * 1e-3;
}

} // namespace xpon::simulator
