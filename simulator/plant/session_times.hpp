#pragma once

#include "simulator/plant/plant_time.hpp"

#include <vector>

namespace xpon::simulator {

/// One session of a PPPoE client [RFC 2516].
struct SessionTime {
    Stretch open;
    std::vector<Stretch> usable; ///< the parts of it in which there is an uplink, ascending
};

/// The sessions that a client opens, or is to open if nothing happens any more, ascending. Its service runs from
/// `begin` on; `uplinks` is when its VLAN leads into the network and `blocks` when the network refuses it, both
/// ascending; a session takes `delay` from when it becomes possible.
std::vector<SessionTime> session_times(PlantTime begin, PlantTime delay, const std::vector<Stretch>& uplinks,
                                       const std::vector<Stretch>& blocks);

} // namespace xpon::simulator
