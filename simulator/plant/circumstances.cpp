#include "simulator/plant/circumstances.hpp"

namespace xpon::simulator {

void Circumstances::configure(RunningConfiguration& next) {
    std::swap(configuration, next);
    configured.clear();
    for (const auto& [index, settings] : configuration.onts) {
        configured.emplace(std::pair(index / max_onts_per_port + 1, settings.serial), index);
    }
}

double Circumstances::attenuation_of(const OntPosition& ont) const {
    const auto* const fault = faults.find(FaultKind::ont_attenuation, ont_target(ont));
    return fault == nullptr ? 0 : fault->value;
}

std::optional<std::uint8_t> onu_id_of(const RunningConfiguration& configuration, std::uint16_t index) {
    constexpr unsigned onu_ids = 254; // 0 to 253 [G.984.3]
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
