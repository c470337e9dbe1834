#include "simulator/plant/ports.hpp"

#include "simulator/plant/circumstances.hpp"

#include <algorithm>
#include <optional>
#include <utility>

namespace xpon::simulator {
namespace {

using Where = FaultTarget::Where;

constexpr PlantTime channel_start_time{3000};
constexpr PlantTime link_up_time{2000};

/// Whether the change makes a PON port start again.
bool restarts(const PonPortSettings& before, const PonPortSettings& after) {
    return before.enabled != after.enabled || before.reach_min_km != after.reach_min_km ||
           before.reach_max_km != after.reach_max_km || before.downstream_fec != after.downstream_fec ||
           before.compares_passwords != after.compares_passwords;
}

bool has_rogue(const ActiveFaults& faults, unsigned pon_port) {
    return std::ranges::any_of(faults.all(), [&](const Fault& fault) {
        return fault.kind == FaultKind::ont_rogue && fault.target.port == pon_port;
    });
}

const ModuleModel* pointer_to(const std::optional<ModuleModel>& module) {
    return module ? &*module : nullptr;
}

/// Whether a module can do a speed, 0 being its own. Copper does all speeds below its own [802.3], light that of its
/// standard; modules for 10 Gbit/s usually have a second rate.
bool supports(const ModuleModel& module, unsigned mbps) {
    constexpr unsigned dual_rate_mbps = 1000;
    const bool is_copper = module.media.ends_with("-T");
    return mbps == 0 || mbps == module.speed_mbps || (is_copper && mbps < module.speed_mbps) ||
           (module.speed_mbps == 10000 && mbps == dual_rate_mbps);
}

} // namespace

void Ports::follow(const Circumstances& given, const std::array<PonPortSettings, pon_ports>& before) {
    const auto update = [&](PortRun& run, bool has_module, bool is_enabled, bool restart, PlantTime start_time) {
        if (has_module && !run.has_module) {
            run.module_since = given.now;
        }
        const bool ran = run.has_module && run.is_enabled;
        run.has_module = has_module;
        run.is_enabled = is_enabled;
        if (has_module && is_enabled && (!ran || restart)) {
            run.up_since = std::max(given.now, given.boot_ends) + start_time;
        }
    };
    for (unsigned port = 1; port <= pon_ports; ++port) {
        const auto& settings = given.configuration.pon.at(port - 1);
        auto& run = pon_.at(port - 1);
        update(run, pon_module(given, port) != nullptr, settings.enabled, restarts(before.at(port - 1), settings),
               channel_start_time);
        const bool had_rogue = std::exchange(run.has_rogue, has_rogue(given.faults, port));
        run.rogue_since = run.has_rogue && !had_rogue ? given.now : run.rogue_since;
    }
    for (unsigned port = 1; port <= front_ports; ++port) {
        update(front_.at(port - 1), front_module(given, port) != nullptr,
               given.configuration.front.at(port - 1).enabled, false, link_up_time);
    }
}

void Ports::boot(const Circumstances& given) {
    for (auto& run : pon_) {
        run.up_since = given.boot_ends + channel_start_time;
    }
    for (auto& run : front_) {
        run.up_since = given.boot_ends + link_up_time;
    }
}

void Ports::restart_pon(const Circumstances& given, unsigned port) {
    pon_.at(port - 1).up_since = given.now + channel_start_time;
}

Pon_channel_state Ports::channel_state(const Circumstances& given, unsigned pon_port) const {
    const auto& run = pon(pon_port);
    if (!run.is_enabled) {
        return pon_channel_disabled;
    }
    if (!run.has_module) {
        return pon_channel_no_module;
    }
    if (given.now < run.up_since) {
        return pon_channel_starting;
    }
    // A rogue that nobody stops talks into everyone's time.
    const bool is_disturbed = run.has_rogue && !given.configuration.pon.at(pon_port - 1).detects_rogues;
    return is_disturbed ? pon_channel_fault : pon_channel_active;
}

PlantTime Ports::front_link_since(const Circumstances& given, unsigned front_port) const {
    const auto& run = front(front_port);
    const auto* const module = front_module(given, front_port);
    const auto forced = given.configuration.front.at(front_port - 1).speed_mbps;
    const bool has_partner = given.parameters.plant->front.at(front_port - 1).has_partner;
    const bool is_possible = has_partner && module != nullptr && supports(*module, forced) && run.is_enabled;
    return is_possible ? run.up_since : never;
}

OdnClass Ports::odn_class(const Circumstances& given, unsigned pon_port) {
    const auto* const module = pon_module(given, pon_port);
    return module == nullptr ? OdnClass::b_plus : module->odn_class;
}

const ModuleModel* Ports::pon_module(const Circumstances& given, unsigned port) {
    const bool is_absent = given.faults.has(FaultKind::module_absent, port_target(Where::pon_port, port));
    return is_absent ? nullptr : pointer_to(given.parameters.plant->pon.at(port - 1).module);
}

const ModuleModel* Ports::front_module(const Circumstances& given, unsigned port) {
    const bool is_absent = given.faults.has(FaultKind::module_absent, port_target(Where::front_port, port));
    return is_absent ? nullptr : pointer_to(given.parameters.plant->front.at(port - 1).module);
}

} // namespace xpon::simulator
