#include "simulator/plant/plant.hpp"

#include <algorithm>
#include <utility>

namespace xpon::simulator {

Plant::Plant(const PlantParameters& parameters, RunningConfiguration configuration)
    : given_(parameters), onts_(parameters) {
    const auto replaced = given_.configure(std::move(configuration));
    for (const auto& [kind, target, value] : parameters.plant->faults) {
        given_.faults.set({.kind = kind, .target = target, .value = value});
    }
    follow(replaced);
    onts_.spread_over(parameters.past, given_.random);
}

void Plant::advance(PlantTime now) {
    auto& faults = given_.faults;
    while (faults.next_end() <= now) {
        given_.now = std::max(given_.now, faults.next_end());
        change([&] { faults.take_ended(given_.now); });
    }
    given_.now = std::max(given_.now, now);
}

void Plant::configure(RunningConfiguration configuration) {
    follow(given_.configure(std::move(configuration)));
}

void Plant::change_configuration(const RunningConfiguration& configuration, const ChangedOnts& onts) {
    const auto replaced = given_.change_configuration(configuration, onts);
    ports_.follow(given_, replaced.pon);
    given_.uplinks.follow(given_, ports_);
    onts_.follow_configuration(given_, ports_, replaced, onts);
    forget_old_past();
}

void Plant::set_fault(const Fault& fault) {
    change([&] { given_.faults.set(fault); });
}

bool Plant::clear_fault(FaultKind kind, const FaultTarget& target) {
    bool was_there = false;
    change([&] { was_there = given_.faults.clear(kind, target); });
    return was_there;
}

void Plant::clear_all_faults() {
    change([&] { given_.faults.clear_all(); });
}

void Plant::switch_power(const std::vector<OntPosition>& onts, bool on) {
    change([&] {
        for (const auto& ont : onts) {
            given_.power.insert_or_assign(ont, on);
        }
    });
}

void Plant::plug_in(const PhysicalOnt& ont) {
    onts_.put(ont);
    change([&] { given_.power.erase(ont.position); });
}

void Plant::change_leases(const OntPosition& ont, unsigned service, bool drop) {
    change([&] { given_.acts.at(ont, service).leases.push_back({given_.now, drop}); });
}

void Plant::end_session(const OntPosition& ont, unsigned service) {
    change([&] { given_.pppoe_blocks.end_session(ont, service, given_.now); });
}

void Plant::choose_groups(const OntPosition& ont, unsigned service, const std::optional<JoinedGroups>& held) {
    change([&] { given_.acts.at(ont, service).groups.push_back({given_.now, held}); });
}

void Plant::set_profile(const OntPosition& ont, unsigned service, TrafficProfile profile) {
    change([&] { given_.acts.at(ont, service).profile = profile; });
}

void Plant::boot(PlantTime takes) {
    change([&] {
        given_.booted_at = given_.now;
        given_.boot_ends = given_.now + takes;
        ports_.boot(given_);
    });
    onts_.forget_last_services();
}

void Plant::restart_pon_ports(const std::function<bool(unsigned port)>& is_meant) {
    change([&] {
        for (unsigned port = 1; port <= pon_ports; ++port) {
            if (is_meant(port)) {
                ports_.restart_pon(given_, port);
            }
        }
    });
}

void Plant::change(const std::function<void()>& mutate) {
    mutate();
    follow({given_.configuration.pon, {}});
}

void Plant::follow(const ReplacedSettings& replaced) {
    ports_.follow(given_, replaced.pon);
    given_.uplinks.follow(given_, ports_);
    given_.pppoe_blocks.follow(given_.faults, given_.now);
    onts_.follow(given_, ports_, replaced);
    forget_old_past();
}

/// What was carried is counted before it is forgotten when it could be, and up to the present: which leases came of it
/// is forgotten, too.
void Plant::forget_old_past() {
    const auto forget = [&](auto& past) {
        if (const auto until = past.end_of_oldest_half()) {
            onts_.count_until(given_, given_.now);
            past.forget_before(*until);
        }
    };
    forget(given_.uplinks);
    forget(given_.pppoe_blocks);
    forget(given_.acts);
}

MeteredOnt Plant::metered(const Ont& ont) const {
    return {.given = given_,
            .hardware = *ont.hardware,
            .settings = *ont.settings,
            .split = given_.parameters.plant->split_of(ont.situation->seen_port),
            .line = *ont.line,
            .since = ont.point.since,
            .usage = *ont.usage};
}

std::optional<OntTally> Plant::counted(const Ont& ont) const {
    if (ont.point.state == ont_operational) {
        return ont.meter->read(metered(ont), now());
    }
    const auto* const past = keeps_activation(ont.point.state) ? ont.meter->counted() : nullptr;
    return past == nullptr ? std::nullopt : std::optional(*past);
}

double Plant::received_power_of(const Ont& ont) const {
    return received_power(ont.hardware->path, given_.parameters.plant->split_of(ont.situation->seen_port),
                          given_.attenuation_of(ont.hardware->position), given_.now);
}

} // namespace xpon::simulator
