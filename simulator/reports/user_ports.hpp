#pragma once

#include "simulator/plant/ont_meter.hpp"
#include "simulator/plant/user_places.hpp"

#include <array>

namespace xpon::simulator {

/// What passed a user port of an ONT.
struct UserPortTraffic {
    Frames up;             ///< from the user
    Frames down;           ///< to the user, all of them,
    Frames down_multicast; ///< and those of them that are such
    Frames down_broadcast;
    double refused_up = 0; ///< above the services' limits, in octets

    UserPortTraffic& operator-=(const UserPortTraffic& less);
};

/// By place.
using UserPorts = std::array<UserPortTraffic, veip_place + 1>;

/// What has passed the user ports by the time of the tally. The frames of a service with several ports go to them in
/// turn, so that their counts add up to the service's. Services of the ONT's own host pass none.
UserPorts count_user_ports(const OntModel& model, const OntSettings& settings, const OntTally& tally);

} // namespace xpon::simulator
