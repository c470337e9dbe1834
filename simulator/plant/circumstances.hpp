#pragma once

#include "simulator/plant/active_faults.hpp"
#include "simulator/plant/plant_description.hpp"
#include "simulator/plant/pppoe_blocks.hpp"
#include "simulator/plant/running_configuration.hpp"
#include "simulator/plant/subscriber_acts.hpp"
#include "simulator/plant/uplink_history.hpp"

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <utility>

namespace xpon::simulator {

/// What a plant is given, and when: all that its ports and ONTs do follows from it.
struct Circumstances {
    explicit Circumstances(const PlantParameters& asked_for) : parameters(asked_for), random(asked_for.seed) {}

    /// Puts a configuration into force.
    ReplacedSettings configure(RunningConfiguration next);
    /// The same for one that differs in these ONTs at most, at the cost of them.
    ReplacedSettings change_configuration(const RunningConfiguration& next, const ChangedOnts& onts);
    /// What a fault takes from the light of a physical ONT, in dB.
    [[nodiscard]] double attenuation_of(const OntPosition& ont) const;

    /// How many bit times later than it should a physical ONT answers.
    [[nodiscard]] std::uint32_t drift_of(const OntPosition& ont) const;
    /// Whether a physical ONT is plugged in and switched on.
    [[nodiscard]] bool has_power(const PhysicalOnt& ont) const;

    PlantParameters parameters;
    Random random;
    PlantTime now{};
    PlantTime booted_at{};
    PlantTime boot_ends{};
    RunningConfiguration configuration;
    /// (PON port, serial) to the flat index of the ONT's configuration.
    std::map<std::pair<unsigned, std::uint64_t>, std::uint16_t> configured;
    ActiveFaults faults;
    /// What testers switched on and off; all others are as they are made.
    std::map<OntPosition, bool> power;

    // What its subscribers remember of its past.
    UplinkHistory uplinks;
    PppoeBlocks pppoe_blocks;
    SubscriberActs acts;

    /// What the parameters and the configuration do not say.
    template <class Archive>
    void archive(Archive& state) {
        state(now, booted_at, boot_ends, faults, power, uplinks, pppoe_blocks, acts);
    }

private:
    void forget_serial_of(std::uint16_t index);
    void note_serial_of(std::uint16_t index);
};

/// The ONU-ID that is left for a configured ONT by its flat index; empty when the port has none left.
std::optional<std::uint8_t> onu_id_of(const RunningConfiguration& configuration, std::uint16_t index);
/// Flat indices of the places on the port of this one whose ONU-IDs depend on which others are configured.
std::array<std::uint16_t, 2> sharers_of_onu_ids(std::uint16_t index);

} // namespace xpon::simulator
