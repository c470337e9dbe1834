#pragma once

#include "simulator/plant/plant_clock.hpp"
#include "simulator/subscribers/access_network.hpp"

#include <chrono>
#include <cstdint>
#include <map>
#include <optional>
#include <string>

namespace xpon::simulator {

// What a simulation goes on with when its process ends, however that comes, and another one takes its place: kept below
// OLT_ROOT/run, which a start of the machine empties, as it does with a device's.

/// Commands that are to be carried out when the plant's time has come, as lines of the control socket.
using Schedule = std::multimap<PlantTime, std::string>;

/// The time of a simulation: the plant's, and what decides how it goes on without the process.
struct KeptClock {
    PlantTime now{};
    std::chrono::system_clock::time_point written_at;
    double rate = 1;
    double asked_rate = 1; ///< on the command line, before commands changed it

    /// The plant's time now.
    [[nodiscard]] PlantTime present() const;
};

/// Replaces what is kept. Throws std::system_error.
void keep_state(AccessNetwork& network, Schedule& schedule, KeptClock& clock);

/// Reads what is kept of a network with the same parameters into one that has just been made. Empty, with the reason in
/// `complaint` unless nothing is kept at all, when it is of another plant or release; the network is spoilt then, and
/// the schedule, too.
std::optional<KeptClock> take_up_state(AccessNetwork& network, Schedule& schedule, std::string& complaint);

} // namespace xpon::simulator
