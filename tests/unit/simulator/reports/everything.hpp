#pragma once

#include "simulator/reports/board_report.hpp"
#include "simulator/reports/ont_report.hpp"
#include "simulator/reports/port_report.hpp"
#include "simulator/reports/subscriber_report.hpp"
#include "tests/unit/simulator/reports/ont_counters_fixture.hpp"

#include <cstddef>
#include <span>
#include <vector>

namespace xpon::simulator {

/// What is answered to every question about a plant and its subscribers.
inline std::vector<std::byte> everything(const AccessNetwork& network) {
    const auto& plant = network.plant();
    std::vector<std::byte> bytes;
    const auto add = [&](const std::vector<std::byte>& part) { bytes.insert(bytes.end(), part.begin(), part.end()); };
    const auto add_list = [&](const auto& entries) { add(peer_side::list_payload(std::span(entries))); };
    Bitmap_ont_range onts{.size = max_onts, .bits = {}};
    std::fill(std::begin(onts.bits), std::end(onts.bits), std::uint8_t{0xff});
    add_list(report_ont_states(plant, onts));
    add_list(report_unactivated(plant, {.size = pon_ports + 1, .bits = {0xff, 0xff, 0xff}}));
    add_list(report_dhcp_sessions(network));
    add_list(report_pppoe_sessions(network));
    add_list(report_igmp_groups(network));
    add_list(report_mac_table(network));
    add(peer_side::record_payload(report_environment(plant)));
    add(peer_side::record_payload(report_pon_states(plant)));
    add(peer_side::record_payload(report_pon_modules(plant)));
    add(peer_side::record_payload(report_front_links(plant)));
    for (unsigned port = 1; port <= front_ports; ++port) {
        add(peer_side::record_payload(report_front_port(plant, port)));
    }
    for (std::uint16_t index = 0; index < max_onts; index = static_cast<std::uint16_t>(index + 64)) {
        add(all_counters(plant, index));
    }
    return bytes;
}

} // namespace xpon::simulator
