#pragma once

#include "simulator/plant/plant.hpp"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace xpon::simulator {

/// An alarm that the OLT raises for an ONT [G.984.3 11.1].
struct OntAlarm {
    std::string_view name;
    std::string_view meaning;
    bool (*is_raised)(const Plant& plant, const Plant::Ont& ont);
};

std::span<const OntAlarm> ont_alarms();

/// Bit n: the n-th of them is raised for the ONT now. They change by events only, never with time.
std::uint32_t alarms_of(const Plant& plant, const Plant::Ont& ont);

} // namespace xpon::simulator
