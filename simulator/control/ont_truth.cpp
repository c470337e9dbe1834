#include "simulator/control/ont_truth.hpp"

#include "simulator/control/json_members.hpp"
#include "simulator/control/subscriber_truth.hpp"
#include "xpon/custom_layer/onts.h"
#include "xpon/custom_layer/pon_ports.h"

#include <algorithm>
#include <cmath>
#include <map>

#include <fmt/format.h>

namespace xpon::simulator {
namespace {

void add_counts(cJSON* entry, const Plant& plant, const Plant::Ont& ont) {
    const auto tally = plant.counted(ont);
    if (!tally) {
        return;
    }
    add(entry, "rx_bytes", static_cast<double>(tally->received().octets));
    add(entry, "tx_bytes", static_cast<double>(tally->sent().octets));
    add(entry, "wrong_bits_up", std::floor(tally->wrong_bits_up));
    add(entry, "wrong_bits_down", std::floor(tally->wrong_bits_down));
}

void add_line(cJSON* entry, const Plant& plant, const Plant::Ont& ont) {
    const auto split = plant.parameters().plant->split_of(ont.situation->seen_port);
    add(entry, "split", split);
    add(entry, "attenuation_db", ont.line->attenuation_db);
    add(entry, "bit_error_rate_up", BitErrorRate::upstream(plant.random(), *ont.hardware, split, *ont.line).mean());
    add(entry, "bit_error_rate_down", BitErrorRate::downstream(plant.random(), *ont.hardware, split, *ont.line).mean());
    add(entry, "loss_of_signal_dbm", loss_of_signal_dbm(ont.line->odn_class));
}

} // namespace

std::string text_of(Ont_state state) {
    return state == ont_gone ? "GONE" : ont_state_to_str(state);
}

std::string text_of(const OntPosition& ont) {
    return fmt::format("{}/{}", ont.port, ont.ont);
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
    add_counts(entry, plant, ont);
}

core::JsonTree describe_ont(const Simulation& simulation, const OntPosition& place) {
    const auto& plant = simulation.plant();
    core::JsonTree answer(cJSON_CreateObject());
    add(answer.get(), "time_s", seconds_of(plant.now()));
    add(answer.get(), "clock_rate", simulation.clock().rate());
    const auto onts = plant.onts();
    const auto ont = *std::ranges::find_if(onts, [&](const auto& one) { return one.hardware->position == place; });
    add_ont(answer.get(), plant, ont);
    add_line(answer.get(), plant, ont);
    if (ont.situation->configured) {
        add_services(answer.get(), simulation.network(), *ont.situation->configured);
    }
    return answer;
}

core::JsonTree describe_pon_port(const Simulation& simulation, unsigned port) {
    const auto& plant = simulation.plant();
    const auto* const module = plant.pon_module(port);
    core::JsonTree answer(cJSON_CreateObject());
    add(answer.get(), "time_s", seconds_of(plant.now()));
    add(answer.get(), "clock_rate", simulation.clock().rate());
    add(answer.get(), "port", port);
    add(answer.get(), "state", channel_state_to_str(plant.channel_state(port)));
    add(answer.get(), "module", module == nullptr ? "" : module->part_number);
    add(answer.get(), "split", plant.parameters().plant->split_of(port));
    std::map<Ont_state, unsigned> counts;
    auto* const states = cJSON_AddObjectToObject(answer.get(), "onts_by_state");
    auto* const list = cJSON_AddArrayToObject(answer.get(), "onts");
    for (const auto& ont : plant.onts()) {
        if (ont.situation->seen_port != port) {
            continue;
        }
        ++counts[ont.point.state];
        auto* const entry = add_object_to(list);
        add(entry, "ont", text_of(ont.hardware->position));
        add(entry, "serial", serial_text(ont.hardware->serial));
        add(entry, "state", text_of(ont.point.state));
        add(entry, "for_s", seconds_of(plant.now() - ont.point.since));
        cJSON_AddBoolToObject(entry, "power", ont.situation->has_power ? 1 : 0);
        add(entry, "distance_m", std::round(ont.hardware->path.distance_km * 1000));
        add(entry, "rssi_dbm", rounded(plant.received_power_of(ont), 0.01));
    }
    for (const auto& [state, count] : counts) {
        add(states, text_of(state).c_str(), count);
    }
    return answer;
}

} // namespace xpon::simulator
