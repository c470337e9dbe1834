#include "simulator/plant/plant.hpp"

#include <algorithm>
#include <utility>

// The ports of the plant: their modules, and how they come to run.

namespace xpon::simulator {
namespace {

using Where = FaultTarget::Where;

/// Whether the change makes a PON port start again.
bool restarts(const PonPortSettings& before, const PonPortSettings& after) {
    return before.enabled != after.enabled || before.reach_min_km != after.reach_min_km ||
           before.reach_max_km != after.reach_max_km || before.downstream_fec != after.downstream_fec ||
           before.compares_passwords != after.compares_passwords;
}

} // namespace

void Plant::update_ports(const std::array<PonPortSettings, pon_ports>& before) {
    const auto update = [&](PortRun& run, bool has_module, bool is_enabled, bool restart, PlantTime start_time) {
        if (has_module && !run.has_module) {
            run.module_since = now_;
        }
        const bool ran = run.has_module && run.is_enabled;
        run.has_module = has_module;
        run.is_enabled = is_enabled;
        if (has_module && is_enabled && (!ran || restart)) {
            run.up_since = std::max(now_, boot_ends_) + start_time;
        }
    };
    for (unsigned port = 1; port <= pon_ports; ++port) {
        const auto& settings = configuration_.pon.at(port - 1);
        update(pon_.at(port - 1), pon_module(port) != nullptr, settings.enabled,
               restarts(before.at(port - 1), settings), channel_start_time);
        auto& run = pon_.at(port - 1);
        const bool had_rogue = std::exchange(run.has_rogue, has_rogue(port));
        run.rogue_since = run.has_rogue && !had_rogue ? now_ : run.rogue_since;
    }
    for (unsigned port = 1; port <= front_ports; ++port) {
        update(front_.at(port - 1), front_module(port) != nullptr, configuration_.front.at(port - 1).enabled, false,
               link_up_time);
    }
}

bool Plant::has_rogue(unsigned pon_port) const {
    return std::ranges::any_of(faults_.all(), [&](const Fault& fault) {
        return fault.kind == FaultKind::ont_rogue && fault.target.port == pon_port;
    });
}

Pon_channel_state Plant::channel_state(unsigned pon_port) const {
    const auto& run = pon_.at(pon_port - 1);
    if (!run.is_enabled) {
        return pon_channel_disabled;
    }
    if (!run.has_module) {
        return pon_channel_no_module;
    }
    if (now_ < run.up_since) {
        return pon_channel_starting;
    }
    // A rogue that nobody stops talks into everyone's time.
    const bool is_disturbed = has_rogue(pon_port) && !configuration_.pon.at(pon_port - 1).detects_rogues;
    return is_disturbed ? pon_channel_fault : pon_channel_active;
}

PlantTime Plant::front_link_since(unsigned front_port) const {
    const auto& run = front_.at(front_port - 1);
    const auto* const module = front_module(front_port);
    const auto forced = configuration_.front.at(front_port - 1).speed_mbps;
    const bool has_partner = (parameters_.plant->front_links >> (front_port - 1) & 1U) != 0;
    const bool is_possible = has_partner && module != nullptr && forced <= module->speed_mbps && run.is_enabled;
    return is_possible ? run.up_since : never;
}

const ModuleModel* Plant::pon_module(unsigned port) const {
    const bool is_absent = faults_.has(FaultKind::module_absent, port_target(Where::pon_port, port));
    return is_absent ? nullptr : parameters_.plant->pon_modules.at(port - 1);
}

const ModuleModel* Plant::front_module(unsigned port) const {
    const bool is_absent = faults_.has(FaultKind::module_absent, port_target(Where::front_port, port));
    return is_absent ? nullptr : parameters_.plant->front_modules.at(port - 1);
}

} // namespace xpon::simulator
