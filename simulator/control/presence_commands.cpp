#include "simulator/control/presence_commands.hpp"

#include <algorithm>
#include <vector>

#include <fmt/format.h>

namespace xpon::simulator {
namespace {

core::JsonTree number_of_onts(std::size_t count) {
    core::JsonTree answer(cJSON_CreateObject());
    cJSON_AddNumberToObject(answer.get(), "onts", static_cast<double>(count));
    return answer;
}

OntPosition place_of(const std::string& text) {
    const auto target = parse_ont_target(text);
    if (!target) {
        throw CommandError(
            fmt::format("'{}' is no ONT; they are PORT/ONT, 1/1 to {}/{}", text, pon_ports, max_onts_per_port));
    }
    return {.port = target->port, .ont = target->ont};
}

/// With the model and the serial number that the command asks for.
PhysicalOnt made_as_asked(const Simulation& simulation, const CommandFields& fields, PhysicalOnt ont) {
    const auto& models = simulation.plant().parameters().plant->ont_models;
    if (const auto name = fields.text("model"); !name.empty()) {
        const auto model = std::ranges::find(models, name, &OntModel::equipment_id);
        if (model == models.end()) {
            throw CommandError(fmt::format("this plant has no model '{}'", name));
        }
        ont.model = &*model;
        ont.serial = std::uint64_t{model->vendor} << 32U | (ont.serial & 0xffffffffU);
    }
    if (const auto text = fields.text("serial_number"); !text.empty()) {
        const auto serial = parse_serial_number(text);
        if (!serial) {
            throw CommandError("serial_number must be four capital letters and eight hexadecimal digits");
        }
        ont.serial = *serial;
    }
    ont.is_switched_on = true;
    const auto onts = simulation.plant().onts();
    const auto rival = std::ranges::find_if(onts, [&](const auto& other) {
        return other.hardware->serial == ont.serial && other.hardware->position != ont.position;
    });
    if (rival != onts.end()) {
        const auto& position = (*rival).hardware->position;
        throw CommandError(fmt::format("ONT {}/{} has this serial number already", position.port, position.ont));
    }
    return ont;
}

} // namespace

OntPosition known_ont(const Simulation& simulation, const std::string& text) {
    const auto place = place_of(text);
    if (!simulation.plant().has_ont(place)) {
        throw CommandError(fmt::format("there is no ONT {}", text));
    }
    return place;
}

core::JsonTree switch_power(Simulation& simulation, const CommandFields& fields) {
    const auto to = fields.text("power");
    if (to != "on" && to != "off") {
        throw CommandError(fmt::format("power must be on or off, not '{}'", to));
    }
    const auto port = fields.number("pon", 1, pon_ports);
    std::vector<OntPosition> onts;
    if (const auto ont = fields.text("ont"); !ont.empty()) {
        if (port) {
            throw CommandError("power takes an ONT or a PON port, not both");
        }
        onts.push_back(known_ont(simulation, ont));
    } else {
        for (const auto& one : simulation.plant().onts()) {
            const auto& place = one.hardware->position;
            if (!port || place.port == static_cast<unsigned>(*port)) {
                onts.push_back(place);
            }
        }
    }
    simulation.switch_power(onts, to == "on");
    return number_of_onts(onts.size());
}

core::JsonTree add_ont(Simulation& simulation, const CommandFields& fields) {
    const auto place = place_of(fields.text("add"));
    if (simulation.plant().has_ont(place)) {
        throw CommandError(fmt::format("there is an ONT {} already", fields.text("add")));
    }
    const auto ont = make_ont(simulation.plant().parameters(), place);
    simulation.plug_in(made_as_asked(simulation, fields, ont));
    return number_of_onts(1);
}

core::JsonTree swap_ont(Simulation& simulation, const CommandFields& fields) {
    const auto place = known_ont(simulation, fields.text("swap"));
    const auto onts = simulation.plant().onts();
    const auto present = std::ranges::find_if(onts, [&](const auto& ont) { return ont.hardware->position == place; });
    auto ont = *(*present).hardware;
    // Numbers that no ONT of a plant has by itself; the next one for each swap of the place.
    constexpr std::uint32_t first_spare = 0xb0000000;
    const auto number = static_cast<std::uint32_t>(ont.serial);
    const bool was_swapped = number >= first_spare;
    ont.serial = (ont.serial & ~std::uint64_t{0xffffffffU}) |
                 (was_swapped ? number + 0x1000000U : first_spare | place.port << 16U | place.ont);
    simulation.plug_in(made_as_asked(simulation, fields, ont));
    return number_of_onts(1);
}

core::JsonTree move_ont(Simulation& simulation, const CommandFields& fields) {
    const auto place = known_ont(simulation, fields.text("move"));
    const auto port = fields.number("pon", 1, pon_ports);
    if (!port) {
        throw CommandError("move needs the PON port that the ONT is moved to");
    }
    const auto& rule = rule_of(FaultKind::ont_moved);
    if (static_cast<unsigned>(*port) != place.port) {
        simulation.set_fault({.kind = rule.kind, .target = ont_target(place), .value = *port, .until = never}, {});
    } else if (!simulation.clear_fault(rule, ont_target(place))) {
        throw CommandError(fmt::format("ONT {} is on PON port {} already", fields.text("move"), place.port));
    }
    return number_of_onts(1);
}

} // namespace xpon::simulator
