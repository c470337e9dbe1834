#pragma once

#include "simulator/control/event_filter.hpp"
#include "simulator/simulation/simulation.hpp"

#include <optional>
#include <string>
#include <string_view>

namespace xpon::simulator {

/// Carries out one command, a JSON object:
///
///   {"fault": KIND, "target": TEXT, "value": NUMBER, "for_s": SECONDS}   injects a fault; 0 s: until it is cleared
///   {"clear": KIND, "target": TEXT}                                      {"clear": "all"}
///   {"step_s": SECONDS}                                                  moves the clock ahead
///   {"clock": "real" | "stepped" | "scaled", "rate": FACTOR}             rate with "scaled" only
///   {"at_s": SECONDS, "command": OBJECT}                                 the command, when so much time has passed
///   {"state": "all" | "summary" | "subscribers"}                         what is true of the plant
///   {"state": "ont", "ont": PLACE}     {"state": "pon", "pon": PORT}
///   {"firmware": PATH}   {"boot": "current" | "alternate"}   {"reboot": "now"}    of the OLT
///   {"power": "on" | "off", "ont": PLACE}                                or "pon": PORT, or all ONTs
///   {"add": PLACE}   {"swap": PLACE}   {"move": PLACE, "pon": PORT}      ONTs come, are replaced, change their fibre
///   {"lease": "renew" | "drop", "service": SERVICE}                      of all hosts of a service
///   {"session": "drop", "service": SERVICE}                              its PPPoE client opens another one
///   {"group": "join" | "leave", "service": SERVICE, "address": TEXT}     {"group": "release", "service": SERVICE}
///   {"traffic": "start", "service": SERVICE, "profile": NAME}            {"traffic": "stop", "service": SERVICE}
///   {"snapshot": NAME}                                                   keeps plant, time and faults as they are
///   {"load": NAME}                                                       goes back to them; the configuration stays
///   {"watch": "all" | "KIND,KIND...", "target": TEXT}                    from now on its sender is told of these
///   events
///   {"faults": true}                                                     the kinds of faults and what they take
///
/// Kinds, targets and values are those of fault_kinds.hpp. The answer is {"ok": true, ...} or {"ok": false, "error":
/// TEXT}; a refused command changes nothing. Never throws but for lack of memory.
std::string run_command(Simulation& simulation, std::string_view line, std::optional<EventFilter>& watch);

} // namespace xpon::simulator
