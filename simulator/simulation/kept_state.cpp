#include "simulator/simulation/kept_state.hpp"

#include "simulator/files/whole_file.hpp"
#include "simulator/plant/state_archive.hpp"
#include "xpon/peer_side/olt_root.hpp"

#include <algorithm>
#include <fstream>
#include <iterator>

#include <fmt/format.h>

namespace xpon::simulator {
namespace {

constexpr const char* kept_path = "/run/plant_state";

/// What must be the same for the rest to mean anything.
std::string heading(const PlantParameters& parameters) {
    const auto& plant = *parameters.plant;
    return fmt::format("olt_simulator {} {} {}\nplant {} {} of seed {}, {} ONTs\n", XPON_VERSION, sizeof(OntTally),
                       sizeof(TrackedOnt) + sizeof(OntSettings), plant.name, plant.board.serial_number, parameters.seed,
                       parameters.size.onts);
}

} // namespace

PlantTime KeptClock::present() const {
    const std::chrono::duration<double, std::milli> away = std::chrono::system_clock::now() - written_at;
    // A clock of the machine that was set back makes no time pass backwards.
    return now + PlantTime(static_cast<PlantTime::rep>(std::max(away.count(), 0.0) * rate));
}

void keep_state(AccessNetwork& network, Schedule& schedule, KeptClock& clock) {
    StateWriter state;
    state(network, schedule, clock);
    replace_file(below_olt_root(kept_path), heading(network.plant().parameters()) + state.take());
}

std::optional<KeptClock> take_up_state(AccessNetwork& network, Schedule& schedule, std::string& complaint) {
    std::ifstream file(below_olt_root(kept_path), std::ios::binary);
    if (!file) {
        return std::nullopt;
    }
    const std::string kept{std::istreambuf_iterator<char>(file), {}};
    const auto expected = heading(network.plant().parameters());
    if (!kept.starts_with(expected)) {
        complaint = "another plant, or another release of it, ran here before: this one starts anew";
        return std::nullopt;
    }
    try {
        KeptClock clock;
        StateReader state(std::string_view(kept).substr(expected.size()));
        state(network, schedule, clock);
        return clock;
    } catch (const std::exception& error) {
        complaint = fmt::format("{}: the plant starts anew", error.what());
        return std::nullopt;
    }
}

} // namespace xpon::simulator
