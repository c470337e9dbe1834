#include "simulator/plant/plant.hpp"

#include <algorithm>

namespace xpon::simulator {

Plant::Plant(const PlantParameters& parameters, RunningConfiguration configuration)
    : given_(parameters), onts_(parameters) {
    change(configuration, [&] {
        given_.configure(configuration);
        for (const auto& [kind, target, value] : parameters.plant->faults) {
            given_.faults.set({.kind = kind, .target = target, .value = value});
        }
    });
}

void Plant::advance(PlantTime now) {
    auto& faults = given_.faults;
    while (faults.next_end() <= now) {
        given_.now = std::max(given_.now, faults.next_end());
        change(given_.configuration, [&] { faults.take_ended(given_.now); });
    }
    given_.now = std::max(given_.now, now);
}

void Plant::configure(RunningConfiguration configuration) {
    change(configuration, [&] { given_.configure(configuration); });
}

void Plant::set_fault(const Fault& fault) {
    change(given_.configuration, [&] { given_.faults.set(fault); });
}

bool Plant::clear_fault(FaultKind kind, const FaultTarget& target) {
    bool was_there = false;
    change(given_.configuration, [&] { was_there = given_.faults.clear(kind, target); });
    return was_there;
}

void Plant::clear_all_faults() {
    change(given_.configuration, [&] { given_.faults.clear_all(); });
}

void Plant::boot(PlantTime takes) {
    change(given_.configuration, [&] {
        given_.booted_at = given_.now;
        given_.boot_ends = given_.now + takes;
        ports_.boot(given_);
    });
    onts_.forget_last_services();
}

void Plant::restart_pon_ports(const std::function<bool(unsigned port)>& is_meant) {
    change(given_.configuration, [&] {
        for (unsigned port = 1; port <= pon_ports; ++port) {
            if (is_meant(port)) {
                ports_.restart_pon(given_, port);
            }
        }
    });
}

void Plant::change(const RunningConfiguration& before, const std::function<void()>& mutate) {
    const auto points = onts_.points(given_);
    mutate();
    ports_.follow(given_, before.pon);
    onts_.follow(given_, ports_, points, before);
}

MeteredOnt Plant::metered(const Ont& ont) const {
    return {.random = given_.random,
            .hardware = *ont.hardware,
            .settings = *ont.settings,
            .split = given_.parameters.plant->split_of(ont.situation->seen_port),
            .line = *ont.line,
            .since = ont.point.since};
}

double Plant::received_power_of(const Ont& ont) const {
    return received_power(ont.hardware->path, given_.parameters.plant->split_of(ont.situation->seen_port),
                          given_.attenuation_of(ont.hardware->position), given_.now);
}

} // namespace xpon::simulator
