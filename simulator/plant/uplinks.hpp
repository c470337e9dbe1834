#pragma once

#include "simulator/plant/plant_time.hpp"
#include "simulator/plant/running_configuration.hpp"
#include "xpon/custom_layer/subscribers.h"

#include <cstdint>
#include <vector>

namespace xpon::simulator {

struct Circumstances;
class Ports;

/// A port of the switch towards the network, as the switch forwards to it: a front port, or the channel that it is a
/// member of.
struct UplinkPort {
    Switch_port_kind kind = switch_port_front;
    std::uint8_t number = 0; ///< from 1

    bool operator==(const UplinkPort&) const = default;
};

struct Uplink {
    UplinkPort port;
    VlanSet vlans;
};

/// What a front port, from 1, is to the switch.
UplinkPort uplink_port_of(const RunningConfiguration& configuration, unsigned front_port);

/// The uplinks that work at `time`, now or later, if nothing happens until then. Front ports come first, ascending.
std::vector<Uplink> uplinks_at(const Circumstances& given, const Ports& ports, PlantTime time);

} // namespace xpon::simulator
