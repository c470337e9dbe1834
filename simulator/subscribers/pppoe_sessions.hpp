#pragma once

#include "simulator/subscribers/subscribers.hpp"

#include <cstdint>
#include <optional>

namespace xpon::simulator {

/// A session as the intermediate agent knows it [RFC 2516].
struct PppoeSession {
    std::uint16_t id;     ///< 0: the network refuses it
    PlantTime open_for;   ///< zero for a refused one
    PlantTime blocked_on; ///< until a refused one may try again; zero for an open one
};

/// The sessions that clients open as soon as their ONT is in service and the network is reached.
class PppoeSessions {
public:
    explicit PppoeSessions(const AccessNetwork& network)
        : network_(network), uplinks_(network.plant().uplink_history()) {}

    /// The one of a line; empty without.
    [[nodiscard]] std::optional<PppoeSession> find(const SubscriberLine& line);

private:
    const AccessNetwork& network_;
    UplinkStretches uplinks_;
};

} // namespace xpon::simulator
