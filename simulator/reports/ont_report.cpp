#include "simulator/reports/ont_report.hpp"

#include "simulator/reports/bitmap.hpp"
#include "xpon/peer_side/fixed_text.hpp"
#include "xpon/peer_side/serial_bytes.hpp"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <tuple>

namespace xpon::simulator {
namespace {

void put_alloc_ids(Ont__state_info& info, const Plant& plant, const Plant::Ont& ont) {
    const auto onu_id = onu_id_of(plant.configuration(), *ont.situation->configured);
    if (!holds_onu_id(ont.point.state) || !onu_id) {
        return;
    }
    // Data T-CONTs come with the services; the management channel is there from the start [G.984.3 5.1.2].
    constexpr unsigned first_data = 256;
    constexpr unsigned data_per_ont = 8;
    info.alloc_ids[info.alloc_count++] = *onu_id;
    const bool is_provided = ont.point.state == ont_configuring || ont.point.state == ont_operational;
    for (unsigned tcont = 0; is_provided && tcont < ont.settings->tconts; ++tcont) {
        info.alloc_ids[info.alloc_count++] = static_cast<std::uint16_t>(first_data + *onu_id * data_per_ont + tcont);
    }
}

Ont__state_info state_of(const Plant& plant, const Plant::Ont& ont) {
    constexpr double no_light_dbm = -40;
    const auto& settings = plant.configuration().pon.at(ont.situation->seen_port - 1U);
    const auto state = ont.point.state;
    Ont__state_info info;
    std::memset(&info, 0, sizeof info);
    std::ranges::copy(serial_bytes(ont.hardware->serial), info.serial);
    info.port = static_cast<std::uint8_t>(ont.situation->seen_port);
    info.ont_id = static_cast<std::uint16_t>(*ont.situation->configured % max_onts_per_port + 1);
    info.state = state;
    info.fec_state = ont.settings->upstream_fec ? 1 : 0;
    // O7 and O6: the ONT is not allowed to send.
    const bool sends = state < ont_popup;
    info.rssi = sends ? std::round(plant.received_power_of(ont) * 10) / 10 : no_light_dbm;
    if (sends && state > ont_ranging) {
        // The OLT takes from the delay what the ONT is late.
        const auto drift = plant.drift_of(ont);
        const auto delay = equalization_delay(ont.hardware->path, settings.reach_max_km);
        info.equalization_delay = delay - std::min(drift, delay);
        info.distance = static_cast<std::uint32_t>(std::lround(ont.hardware->path.distance_km * 1000));
    }
    // Read over OMCI during the MIB upload.
    if (state == ont_configuring || state == ont_operational) {
        put_text(info.equipment_id, ont.hardware->model->equipment_id);
        put_text(info.hardware_version, ont.hardware->model->hardware_version);
        put_text(info.software_version, ont.hardware->model->software_version);
    }
    put_alloc_ids(info, plant, ont);
    return info;
}

} // namespace

std::vector<Ont__state_info> report_ont_states(const Plant& plant, const Bitmap_ont_range& range) {
    std::vector<Ont__state_info> states;
    states.reserve(plant.configuration().onts.size());
    for (std::uint16_t index = 0; index < max_onts; ++index) {
        const auto ont = contains(range, index) ? plant.ont_configured_as(index) : std::nullopt;
        if (ont && is_listed(ont->point.state)) {
            states.push_back(state_of(plant, *ont));
        }
    }
    return states;
}

std::vector<Ont_unactivated_entry> report_unactivated(const Plant& plant, const Bitmap_pon_port_range& range) {
    std::vector<Ont_unactivated_entry> entries;
    for (const auto& ont : plant.onts()) {
        const auto port = ont.situation->seen_port;
        if (ont.point.state == ont_serial_number && contains(range, port)) {
            auto& entry = entries.emplace_back();
            entry.port = static_cast<std::uint8_t>(port);
            std::ranges::copy(serial_bytes(ont.hardware->serial), entry.serial);
            put_text(entry.password, password_of(ont.hardware->position));
        }
    }
    const auto order = [](const Ont_unactivated_entry& entry) {
        return std::tuple(entry.port, std::to_array(entry.serial));
    };
    std::ranges::sort(entries, {}, order);
    return entries;
}

} // namespace xpon::simulator
