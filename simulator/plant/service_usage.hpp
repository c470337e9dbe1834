#pragma once

#include "simulator/plant/multicast.hpp"

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string_view>

namespace xpon::simulator {

/// How much the users of a service want of it.
enum class TrafficProfile : std::uint8_t {
    usual,      ///< what its type and the time of day make of it
    idle,       ///< nobody is there; devices talk now and then
    evening,    ///< all day as in the busiest hour
    speed_test, ///< both ways as much as a port of 1 Gbit/s takes
};

/// By profile.
inline constexpr std::array<std::string_view, 4> traffic_profile_names{"usual", "idle", "evening", "speed_test"};

/// How testers have a service used.
struct ServiceUsage {
    TrafficProfile profile = TrafficProfile::usual;
    std::optional<JoinedGroups> held; ///< joined all the time; empty: what its viewers like

    bool operator==(const ServiceUsage&) const = default;
};

/// By number of the service, from 1; none of those that are used as their subscribers like.
using OntUsage = std::map<unsigned, ServiceUsage>;

} // namespace xpon::simulator
