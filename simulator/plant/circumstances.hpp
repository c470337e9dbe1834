#pragma once

#include "simulator/plant/active_faults.hpp"
#include "simulator/plant/plant_description.hpp"
#include "simulator/plant/running_configuration.hpp"

#include <cstdint>
#include <map>
#include <optional>
#include <utility>

namespace xpon::simulator {

/// What a plant is given, and when: all that its ports and ONTs do follows from it.
struct Circumstances {
    explicit Circumstances(const PlantParameters& asked_for) : parameters(asked_for), random(asked_for.seed) {}

    /// Puts a configuration into force; `next` becomes the one before.
    void configure(RunningConfiguration& next);
    /// What a fault takes from the light of a physical ONT, in dB.
    [[nodiscard]] double attenuation_of(const OntPosition& ont) const;

    PlantParameters parameters;
    Random random;
    PlantTime now{};
    PlantTime booted_at{};
    PlantTime boot_ends{};
    RunningConfiguration configuration;
    /// (PON port, serial) to the flat index of the ONT's configuration.
    std::map<std::pair<unsigned, std::uint64_t>, std::uint16_t> configured;
    ActiveFaults faults;
};

/// The ONU-ID that is left for a configured ONT by its flat index; empty when the port has none left.
std::optional<std::uint8_t> onu_id_of(const RunningConfiguration& configuration, std::uint16_t index);

} // namespace xpon::simulator
