#pragma once

#include "simulator/plant/circumstances.hpp"
#include "simulator/plant/service_hosts.hpp"

#include <optional>
#include <vector>

namespace xpon::simulator {

/// When a service of an ONT in service carries traffic, or is to carry it if nothing happens any more.
struct ServiceUse {
    /// `since`: in service.
    ServiceUse(const Circumstances& given, const PhysicalOnt& ont, const OntSettings& settings,
               const ServiceSettings& service, PlantTime since);

    ServiceHosts hosts;
    /// An uplink carries its VLAN and a host may use it, ascending: with a lease, in a session, or always if it needs
    /// neither.
    std::vector<Stretch> usable;
    /// An uplink carries the VLAN of its streams, too, ascending.
    std::vector<Stretch> streams;
};

/// When the first attempt for a session succeeds, counted from when it is possible.
PlantTime session_delay(const ServiceHosts& hosts);

/// The parts of both, which are ascending.
std::vector<Stretch> common(const std::vector<Stretch>& one, const std::vector<Stretch>& other);

} // namespace xpon::simulator
