#include "simulator/control/truth.hpp"

#include "xpon/custom_layer/onts.h"
#include "xpon/custom_layer/pon_ports.h"

#include <cerrno>
#include <cmath>
#include <map>
#include <string>

#include <fmt/format.h>

namespace xpon::simulator {
namespace {

void add(cJSON* object, const char* name, const std::string& text) {
    cJSON_AddStringToObject(object, name, text.c_str());
}

void add(cJSON* object, const char* name, double number) {
    cJSON_AddNumberToObject(object, name, number);
}

cJSON* add_object_to(cJSON* array) {
    auto* const object = cJSON_CreateObject();
    cJSON_AddItemToArray(array, object);
    return object;
}

double rounded(double number, double unit) {
    return std::round(number / unit) * unit;
}

std::string text_of(Ont_state state) {
    return state == ont_gone ? "GONE" : ont_state_to_str(state);
}

std::string text_of(const OntPosition& ont) {
    return fmt::format("{}/{}", ont.port, ont.ont);
}

/// Vendor's letters and the number: "SIMUA0030011".
std::string serial_text(std::uint64_t serial) {
    std::string text;
    for (unsigned byte = 0; byte < 4; ++byte) {
        text += static_cast<char>(serial >> (56 - 8 * byte) & 0xffU);
    }
    return text + fmt::format("{:08X}", serial & 0xffffffffU);
}

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

void add_ont(cJSON* entry, const Plant& plant, const Plant::Ont& ont) {
    const auto& position = ont.hardware->position;
    add(entry, "ont", text_of(position));
    add(entry, "serial", serial_text(ont.hardware->serial));
    add(entry, "password", password_of(position));
    add(entry, "model", std::string(ont.hardware->model->equipment_id));
    add(entry, "state", text_of(ont.point.state));
    add(entry, "for_s", seconds_of(plant.now() - ont.point.since));
    add(entry, "seen_port", ont.situation->seen_port);
    if (const auto& configured = ont.situation->configured) {
        add(entry, "configured", text_of(place_of_record(*configured)));
    }
    cJSON_AddBoolToObject(entry, "power", ont.situation->has_power ? 1 : 0);
    cJSON_AddBoolToObject(entry, "local_data", ont.has_local_data ? 1 : 0);
    add(entry, "distance_m", std::round(ont.hardware->path.distance_km * 1000));
    add(entry, "rssi_dbm", rounded(plant.received_power_of(ont), 0.01));
}

/// What the OLT counts of an ONT in service, whether or not it is to tell.
void add_counts(cJSON* entry, const Plant& plant, const Plant::Ont& ont) {
    if (ont.point.state != ont_operational) {
        return;
    }
    const auto tally = ont.meter->read(plant.metered(ont), plant.now());
    add(entry, "rx_bytes", static_cast<double>(tally.received().octets));
    add(entry, "tx_bytes", static_cast<double>(tally.sent().octets));
    add(entry, "wrong_bits_up", std::floor(tally.wrong_bits_up));
    add(entry, "wrong_bits_down", std::floor(tally.wrong_bits_down));
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
        add_counts(entry, simulation.plant(), ont);
    }
    return all;
}

core::JsonTree describe_fault_kinds() {
    core::JsonTree answer(cJSON_CreateObject());
    auto* const kinds = cJSON_AddArrayToObject(answer.get(), "faults");
    for (const auto& rule : fault_rules()) {
        auto* const entry = add_object_to(kinds);
        add(entry, "fault", std::string(rule.name));
        add(entry, "target", expected_target(rule));
        if (!rule.value.empty()) {
            add(entry, "value", fmt::format("{}, {} to {}", rule.value, rule.least_value, rule.most_value));
        }
    }
    return answer;
}

} // namespace xpon::simulator
