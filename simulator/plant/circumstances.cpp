#include "simulator/plant/circumstances.hpp"

#include <algorithm>
#include <utility>

namespace xpon::simulator {
namespace {

constexpr unsigned onu_ids = 254; // of a PON port, 0 to 253 [G.984.3]

std::pair<unsigned, std::uint64_t> place_of(std::uint16_t index, const OntSettings& settings) {
    return {index / max_onts_per_port + 1, settings.serial};
}

} // namespace

ReplacedSettings Circumstances::configure(RunningConfiguration next) {
    std::swap(configuration, next);
    configured.clear();
    for (const auto& [index, settings] : configuration.onts) {
        configured.emplace(place_of(index, settings), index);
    }
    return {next.pon, std::move(next.onts)};
}

ReplacedSettings Circumstances::change_configuration(const RunningConfiguration& next, const ChangedOnts& onts) {
    ReplacedSettings replaced{std::exchange(configuration.pon, next.pon), {}};
    configuration.front = next.front;
    configuration.channels = next.channels;
    configuration.management_vlan = next.management_vlan;
    configuration.fans = next.fans;
    configuration.hostname = next.hostname;
    std::ranges::for_each(onts, [this](auto index) { forget_serial_of(index); });
    for (const auto index : onts) {
        if (auto before = configuration.onts.take(index)) {
            replaced.onts[index] = std::move(*before);
        }
        if (const auto* const after = next.onts.find(index)) {
            configuration.onts[index] = *after;
        }
    }
    std::ranges::for_each(onts, [this](auto index) { note_serial_of(index); });
    return replaced;
}

void Circumstances::forget_serial_of(std::uint16_t index) {
    if (const auto* const settings = configuration.onts.find(index)) {
        configured.erase(place_of(index, *settings));
    }
}

void Circumstances::note_serial_of(std::uint16_t index) {
    if (const auto* const settings = configuration.onts.find(index)) {
        configured.emplace(place_of(index, *settings), index);
    }
}

double Circumstances::attenuation_of(const OntPosition& ont) const {
    const auto* const fault = faults.find(FaultKind::ont_attenuation, ont_target(ont));
    return fault == nullptr ? 0 : fault->value;
}

std::array<std::uint16_t, 2> sharers_of_onu_ids(std::uint16_t index) {
    const auto first = index - index % max_onts_per_port + onu_ids;
    return {static_cast<std::uint16_t>(first), static_cast<std::uint16_t>(first + 1)};
}

std::uint32_t Circumstances::drift_of(const OntPosition& ont) const {
    const auto* const fault = faults.find(FaultKind::ont_drift, ont_target(ont));
    return fault == nullptr ? 0 : static_cast<std::uint32_t>(fault->value);
}

bool Circumstances::has_power(const PhysicalOnt& ont) const {
    const auto switched = power.find(ont.position);
    const bool is_on = switched == power.end() ? ont.is_switched_on : switched->second;
    return is_on && !faults.has(FaultKind::ont_dying_gasp, ont_target(ont.position));
}

std::optional<std::uint8_t> onu_id_of(const RunningConfiguration& configuration, std::uint16_t index) {
    const auto ont = index % max_onts_per_port;
    if (ont < onu_ids) {
        return static_cast<std::uint8_t>(ont);
    }
    // The last two take what ONTs that are not configured leave, in their order.
    const auto first = static_cast<std::uint16_t>(index - ont);
    auto to_skip = ont - onu_ids;
    for (unsigned id = 0; id < onu_ids; ++id) {
        if (!configuration.onts.contains(static_cast<std::uint16_t>(first + id)) && to_skip-- == 0) {
            return static_cast<std::uint8_t>(id);
        }
    }
    return std::nullopt;
}

} // namespace xpon::simulator
