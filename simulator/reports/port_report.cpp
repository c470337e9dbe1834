#include "simulator/reports/port_report.hpp"

#include "xpon/peer_side/fixed_text.hpp"

#include <cmath>

namespace xpon::simulator {
namespace {

using Where = FaultTarget::Where;

/// What the plant knows of the slot of one port.
struct Slot {
    FaultTarget target;
    const ModuleModel* module;
    bool is_excluded;
    bool has_diagnostics;
    double extra_degrees;

    Slot(const Plant& plant, Where where, unsigned port)
        : target{.where = where, .port = static_cast<std::uint16_t>(port)},
          module(where == Where::pon_port ? plant.pon_module(port) : plant.front_module(port)),
          is_excluded(plant.faults().has(FaultKind::module_excluded, target)),
          has_diagnostics(module != nullptr && module->has_diagnostics && !is_excluded &&
                          !plant.faults().has(FaultKind::module_no_diagnostics, target)) {
        const auto* const hot = plant.faults().find(FaultKind::module_hot, target);
        extra_degrees = hot == nullptr ? 0 : hot->value;
    }

    /// Key of its random values.
    [[nodiscard]] std::uint64_t key() const {
        return static_cast<std::uint64_t>(target.where) << 8U | target.port;
    }
};

std::string_view condition_text(const Slot& slot, const ModuleReadings& readings) {
    // Usual limits of a commercial module [SFF-8472]; the other readings stay inside theirs.
    constexpr double warning_c = 70;
    constexpr double alarm_c = 75;
    if (!slot.has_diagnostics || readings.temperature_c <= warning_c) {
        return "Present";
    }
    return readings.temperature_c <= alarm_c ? "Warning" : "Alarm";
}

Sfp_identification identify(const Slot& slot, const ModuleReadings& readings) {
    Sfp_identification sfp{};
    if (slot.module == nullptr) {
        return sfp;
    }
    if (slot.is_excluded) {
        sfp.condition = sfp_excluded_from_polling;
        return sfp;
    }
    sfp.condition = sfp_present;
    put_text(sfp.condition_text, condition_text(slot, readings));
    put_text(sfp.vendor, slot.module->vendor);
    put_text(sfp.part_number, slot.module->part_number);
    put_text(sfp.revision, slot.module->revision);
    return sfp;
}

ModuleReadings read_front(const Plant& plant, const Slot& slot) {
    const auto port = slot.target.port;
    auto readings = front_module(plant.random(),
                                 {.port = slot.key(),
                                  .load = plant.front_link_is_up(port) ? 0.6 : 0.1,
                                  .since = plant.front_module_since(port),
                                  .extra_degrees = slot.extra_degrees},
                                 plant.now());
    if (!plant.configuration().front.at(port - 1).enabled) {
        // A laser that is off.
        readings.bias_ma = 0;
        readings.power = 0;
    }
    return readings;
}

ModuleReadings read_pon(const Plant& plant, const Slot& slot, unsigned onts) {
    const auto port = slot.target.port;
    const bool sends = plant.channel_state(port) == pon_channel_active;
    auto readings = pon_module(plant.random(),
                               {.port = slot.key(),
                                .load = (sends ? 0.3 : 0.0) + 0.7 * onts / max_onts_per_port,
                                .since = plant.pon_module_since(port),
                                .extra_degrees = slot.extra_degrees},
                               plant.now());
    if (!sends) {
        // A laser that is off: what a module shows then.
        constexpr double dark_dbm = -40;
        readings.bias_ma = 0;
        readings.power = dark_dbm;
    }
    return readings;
}

std::string_view speed_text(const Plant& plant, unsigned port) {
    if (!plant.front_link_is_up(port)) {
        return "none";
    }
    const auto forced = plant.configuration().front.at(port - 1).speed_mbps;
    const auto speed = forced != 0 ? forced : plant.front_module(port)->speed_mbps;
    return speed >= 10000 ? "10G" : speed >= 1000 ? "1G" : "100M";
}

} // namespace

Bitmap_uplink_port_range report_front_links(const Plant& plant) {
    Bitmap_uplink_port_range links{};
    links.size = front_ports + 1;
    for (unsigned port = 1; port <= front_ports; ++port) {
        if (plant.front_link_is_up(port)) {
            bitfield_set_bit(links.bits, links.size, port);
        }
    }
    return links;
}

Front_port_info report_front_port(const Plant& plant, unsigned port) {
    const Slot slot(plant, Where::front_port, port);
    Front_port_info info{};
    put_text(info.speed, speed_text(plant, port));
    info.sfp = identify(slot, read_front(plant, slot));
    if (info.sfp.condition == sfp_present) {
        put_text(info.media, slot.module->media);
    }
    return info;
}

std::optional<Front_port_sfp_eddi> report_front_diagnostics(const Plant& plant, unsigned port) {
    const Slot slot(plant, Where::front_port, port);
    if (!slot.has_diagnostics) {
        return std::nullopt;
    }
    const auto readings = read_front(plant, slot);
    return Front_port_sfp_eddi{readings.temperature_c, readings.voltage_v, readings.bias_ma, readings.power};
}

Pon_ports_states report_pon_states(const Plant& plant) {
    Pon_ports_states states{};
    states.count = pon_ports;
    for (unsigned port = 1; port <= pon_ports; ++port) {
        states.ports[port - 1].port = static_cast<std::uint8_t>(port);
        states.ports[port - 1].channel_state = plant.channel_state(port);
    }
    for (const auto& ont : plant.onts()) {
        if (holds_onu_id(ont.point.state)) {
            ++states.ports[ont.situation->seen_port - 1].ont_count;
        }
    }
    return states;
}

Pon_ports_sfp_extended_information report_pon_modules(const Plant& plant) {
    const auto states = report_pon_states(plant);
    Pon_ports_sfp_extended_information information{};
    information.count = pon_ports;
    for (unsigned port = 1; port <= pon_ports; ++port) {
        const Slot slot(plant, Where::pon_port, port);
        const auto readings = read_pon(plant, slot, states.ports[port - 1].ont_count);
        auto& entry = information.ports[port - 1];
        entry.port = static_cast<std::uint8_t>(port);
        entry.sfp = identify(slot, readings);
        if (slot.has_diagnostics) {
            entry.valid = 1;
            entry.temperature = readings.temperature_c;
            entry.voltage = readings.voltage_v;
            entry.bias = readings.bias_ma;
            entry.power = readings.power;
        }
    }
    return information;
}

} // namespace xpon::simulator
