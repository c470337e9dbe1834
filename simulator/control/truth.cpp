#include "simulator/control/truth.hpp"

#include "simulator/control/json_members.hpp"
#include "simulator/control/ont_truth.hpp"
#include "xpon/custom_layer/pon_ports.h"

#include <cerrno>
#include <map>
#include <string>

#include <fmt/format.h>

namespace xpon::simulator {
namespace {

void add_faults(cJSON* object, const Plant& plant) {
    auto* const faults = cJSON_AddArrayToObject(object, "faults");
    for (const auto& fault : plant.faults().all()) {
        auto* const entry = add_object_to(faults);
        add(entry, "fault", std::string(rule_of(fault.kind).name));
        add(entry, "target", to_text(fault.target));
        if (!rule_of(fault.kind).value.empty()) {
            add(entry, "value", fault.value);
        }
        if (fault.until != never) {
            add(entry, "ends_in_s", seconds_of(fault.until - plant.now()));
        }
    }
}

void add_firmware(cJSON* object, const Firmware& firmware) {
    const auto slots = firmware.slots();
    auto* const entry = cJSON_AddObjectToObject(object, "firmware");
    add(entry, "running", slots.running);
    add(entry, "next_boot", slots.next_boot());
    cJSON_AddBoolToObject(entry, "update_runs", firmware.update_status() == EBUSY ? 1 : 0);
    auto* const versions = cJSON_AddArrayToObject(entry, "slots");
    for (const auto& slot : slots.slots) {
        cJSON_AddItemToArray(versions, cJSON_CreateString(slot.version));
    }
}

void add_ports(cJSON* object, const Plant& plant) {
    auto* const pon = cJSON_AddArrayToObject(object, "pon_ports");
    for (unsigned port = 1; port <= pon_ports; ++port) {
        auto* const entry = add_object_to(pon);
        add(entry, "port", port);
        add(entry, "state", channel_state_to_str(plant.channel_state(port)));
        add(entry, "module", plant.pon_module(port) == nullptr ? "" : std::string(plant.pon_module(port)->part_number));
    }
    auto* const front = cJSON_AddArrayToObject(object, "front_ports");
    for (unsigned port = 1; port <= front_ports; ++port) {
        auto* const entry = add_object_to(front);
        add(entry, "port", port);
        cJSON_AddBoolToObject(entry, "link", plant.front_link_is_up(port) ? 1 : 0);
        add(entry, "module",
            plant.front_module(port) == nullptr ? "" : std::string(plant.front_module(port)->part_number));
    }
}

} // namespace

core::JsonTree describe_summary(const Simulation& simulation) {
    const auto& plant = simulation.plant();
    core::JsonTree summary(cJSON_CreateObject());
    add(summary.get(), "plant", std::string(plant.parameters().plant->name));
    add(summary.get(), "seed", static_cast<double>(plant.parameters().seed));
    add(summary.get(), "time_s", seconds_of(plant.now()));
    add(summary.get(), "clock_rate", simulation.clock().rate());
    add(summary.get(), "uptime_s", seconds_of(plant.now() - plant.booted_at()));
    cJSON_AddBoolToObject(summary.get(), "booting", plant.is_booting() ? 1 : 0);
    add_firmware(summary.get(), simulation.firmware());
    add(summary.get(), "scheduled", static_cast<double>(simulation.scheduled()));
    add_faults(summary.get(), plant);
    std::map<Ont_state, unsigned> counts;
    for (const auto& ont : plant.onts()) {
        ++counts[ont.point.state];
    }
    auto* const states = cJSON_AddObjectToObject(summary.get(), "onts_by_state");
    for (const auto& [state, count] : counts) {
        add(states, text_of(state).c_str(), count);
    }
    return summary;
}

core::JsonTree describe_all(const Simulation& simulation) {
    auto all = describe_summary(simulation);
    add_ports(all.get(), simulation.plant());
    auto* const onts = cJSON_AddArrayToObject(all.get(), "onts");
    for (const auto& ont : simulation.plant().onts()) {
        auto* const entry = add_object_to(onts);
        add_ont(entry, simulation.plant(), ont);
    }
    return all;
}

core::JsonTree describe_fault_kinds() {
    core::JsonTree answer(cJSON_CreateObject());
    auto* const kinds = cJSON_AddArrayToObject(answer.get(), "faults");
    for (const auto& rule : fault_rules()) {
        auto* const entry = add_object_to(kinds);
        add(entry, "fault", std::string(rule.name));
        if (!rule.value.empty()) {
            add(entry, "value", fmt::format("{}, {} to {}", rule.value, rule.least_value, rule.most_value));
        }
        add(entry, "target", expected_target(rule));
    }
    return answer;
}

} // namespace xpon::simulator
