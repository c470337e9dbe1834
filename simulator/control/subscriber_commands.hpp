#pragma once

#include "simulator/control/command_fields.hpp"
#include "simulator/simulation/simulation.hpp"
#include "xpon/core/json_tree.hpp"

namespace xpon::simulator {

// Commands about what subscribers do. SERVICE is one of a physical ONT that is in service, "3/17/1". They throw
// CommandError.

/// {"lease": "renew" | "drop", "service": SERVICE}: all its hosts renew now, or give their leases up and ask for
/// others.
core::JsonTree change_leases(Simulation& simulation, const CommandFields& fields);
/// {"session": "drop", "service": SERVICE}: the network ends the PPPoE session; the client opens another one.
core::JsonTree change_session(Simulation& simulation, const CommandFields& fields);
/// {"group": "join" | "leave" | "release", "service": SERVICE, "address": "239.0.0.N"}: from the first join or leave on
/// the viewers of the service stay with the groups that they have then, but for this one, until they are released.
core::JsonTree change_groups(Simulation& simulation, const CommandFields& fields);
/// {"traffic": "start", "service": SERVICE, "profile": NAME}, {"traffic": "stop", "service": SERVICE}: how a service is
/// used; in service or not.
core::JsonTree change_traffic(Simulation& simulation, const CommandFields& fields);

} // namespace xpon::simulator
