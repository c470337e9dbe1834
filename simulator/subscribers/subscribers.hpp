#pragma once

#include "simulator/plant/service_hosts.hpp"
#include "simulator/subscribers/access_network.hpp"

#include <array>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <optional>

namespace xpon::simulator {

using MacAddress = std::array<std::uint8_t, 6>;
using Ipv4Address = std::array<std::uint8_t, 4>;

/// A service of an ONT that is seen where it is configured, and the subscribers behind it. Their hosts count from 0.
/// What tells one from the others follows from the ONT's configured place, who they are from the ONT itself.
struct SubscriberLine {
    std::uint16_t index; ///< of the ONT's configuration, flat
    OntPosition place;   ///< the same: PON port and number, from 1
    const Plant::Ont* ont;
    const ServiceSettings* service;
    ServiceHosts hosts;
    std::optional<Stretch> served;        ///< the present time in service; it has no end yet
    std::optional<Stretch> served_before; ///< the last one that has ended, in the same form of the service

    [[nodiscard]] std::uint16_t gem_port() const {
        return gem_port_of(index, service->number);
    }
    /// What is joined behind it, by time.
    [[nodiscard]] Membership membership(const Plant& plant) const;
    [[nodiscard]] MacAddress mac_of(unsigned host) const;
    [[nodiscard]] Ipv4Address ip_of(unsigned host) const;
};

/// Visits all of them, ascending by (port, ONT, service).
void visit_lines(const AccessNetwork& network, const std::function<void(const SubscriberLine&)>& visit);

} // namespace xpon::simulator
