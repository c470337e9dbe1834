#pragma once

#include "simulator/plant/equipment.hpp"
#include "simulator/plant/running_configuration.hpp"

#include <vector>

namespace xpon::simulator {

/// Places of the user ports of an ONT: Ethernet ports 1 to 4 are 0 to 3, then comes the virtual one of its router.
inline constexpr unsigned veip_place = 4;

/// Where a service meets its users, as far as the settings let it: none for a service of the ONT's own host, and for
/// one whose ports are all disabled. A service that ends where the ONT has nothing ends at its first Ethernet port.
std::vector<unsigned> user_places(const OntModel& model, const OntSettings& settings, const ServiceSettings& service);

} // namespace xpon::simulator
