#pragma once

#include "simulator/reports/counter_report.hpp"
#include "tests/unit/simulator/plant/plant_fixture.hpp"
#include "xpon/peer_side/payload.hpp"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <span>

namespace xpon::simulator {

inline constexpr PlantTime interval = std::chrono::minutes(15);
inline constexpr std::uint16_t watched = 0; ///< index of ONT 1/1

/// A line of ONT 1/1 so bad that it is just not cut.
inline Fault barely_lit(const Plant& plant) {
    const double left =
        plant.received_power_of(*plant.ont_configured_as(watched)) - loss_of_signal_dbm(OdnClass::b_plus);
    return fault("ont_attenuation", "1/1", left - 0.5);
}

/// ONT 1/1 of a plant, in service.
class OntCountersTest : public PlantTest {
protected:
    OntCountersTest() : PlantTest(64) {}

    /// To the end of the next interval of the watched ONT.
    void finish_interval() {
        const auto since = plant.ont_configured_as(watched)->point.since;
        plant.advance(since + ((plant.now() - since) / interval + 1) * interval);
    }
    void configure_watched(const std::function<void(OntSettings&)>& edit) {
        configure([&](auto& configuration) {
            edit(configuration.onts.at(watched));
            ++configuration.onts.at(watched).provision;
        });
    }
    [[nodiscard]] Ont__get_pon_counters_response pon() const {
        return report_olt_pon(plant, watched);
    }
};

/// All records of an ONT's counters.
inline std::vector<std::byte> all_counters(const Plant& plant, std::uint16_t index) {
    std::vector<std::byte> bytes;
    const auto add = [&](const auto&... records) {
        (std::ranges::copy(peer_side::record_payload(records), std::back_inserter(bytes)), ...);
    };
    add(report_gem_port_pm(plant, index), report_gem_port_nctp_pm(plant, index), report_gal_eth_pm(plant, index),
        report_fec_pm(plant, index), report_eth_pm(plant, index), report_eth_pm_2(plant, index),
        report_eth_pm_3(plant, index), report_eth_frame_ext_pm(plant, index), report_olt_gem_ports(plant, index),
        report_olt_pon(plant, index));
    return bytes;
}

/// All OLT-side counters of an ONT in one order.
inline std::vector<std::uint64_t> counters_of(const Plant& plant, std::uint16_t index) {
    const auto pon = report_olt_pon(plant, index);
    std::vector<std::uint64_t> counters(sizeof pon / 8);
    std::memcpy(counters.data(), &pon, sizeof pon);
    const auto gem_ports = report_olt_gem_ports(plant, index);
    for (const auto& port : std::span(gem_ports.entries, gem_ports.count)) {
        counters.insert(counters.end(), {port.rx_bytes, port.rx_packets, port.tx_bytes, port.tx_packets});
    }
    return counters;
}

inline bool none_fell(const std::vector<std::uint64_t>& before, const std::vector<std::uint64_t>& after) {
    return std::ranges::equal(std::span(before).first(std::min(before.size(), after.size())),
                              std::span(after).first(std::min(before.size(), after.size())), std::less_equal());
}

} // namespace xpon::simulator
