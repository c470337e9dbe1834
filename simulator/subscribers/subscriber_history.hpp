#pragma once

#include "simulator/subscribers/pppoe_blocks.hpp"
#include "simulator/subscribers/service_history.hpp"
#include "simulator/subscribers/uplink_history.hpp"

namespace xpon::simulator {

/// What subscribers' sessions remember of the plant's past; all else about them follows from its present.
struct SubscriberHistory {
    UplinkHistory uplinks;
    ServiceHistory services;
    PppoeBlocks pppoe_blocks;

    /// Something happened to the plant.
    void follow(const Plant& plant);
};

} // namespace xpon::simulator
