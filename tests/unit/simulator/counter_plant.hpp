#pragma once

#include "simulator/plant/counter_report.hpp"
#include "simulator/plant/plant.hpp"
#include "tests/unit/simulator/triple_play.hpp"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <functional>
#include <span>
#include <vector>

#include <gtest/gtest.h>

namespace xpon::simulator {

inline constexpr PlantTime interval = std::chrono::minutes(15);
/// Of the ONTs 1/1 to 1/4 of the plants here, all of which have power with seeds 1 and 2.
inline constexpr std::uint16_t watched = 0;

inline RunningConfiguration configured(unsigned onts) {
    RunningConfiguration configuration;
    for (unsigned nth = 0; nth < onts; ++nth) {
        const auto index = record_index_of(position_of(nth));
        configuration.onts[index] = {.index = index,
                                     .serial = serial_of(position_of(nth)),
                                     .upstream_fec = nth % 2 == 0,
                                     .services = triple_play(),
                                     .tconts = 4,
                                     .provision = 1};
    }
    return configuration;
}

inline Plant make_plant(std::uint64_t seed = 1, unsigned onts = 64) {
    return {{.plant = find_plant("demo"), .size = {.onts = onts, .configured = onts}, .seed = seed}, configured(onts)};
}

inline Fault fault(FaultKind kind, const char* target, double value = 0) {
    std::string complaint;
    return {.kind = kind, .target = parse_target(rule_of(kind), target, complaint).value(), .value = value};
}

/// A line of ONT 1/1 so bad that it is just not cut.
inline Fault barely_lit(const Plant& plant) {
    const double left = plant.received_power_of(*plant.ont_configured_as(watched)) -
                        loss_of_signal_dbm(PonPortSettings::OdnClass::b_plus);
    return fault(FaultKind::ont_attenuation, "1/1", left - 0.5);
}

/// ONT 1/1 of a plant, in service.
class OntCountersTest : public testing::Test {
protected:
    OntCountersTest() {
        plant.advance(std::chrono::minutes(5));
    }
    void pass(PlantTime time) {
        plant.advance(plant.now() + time);
    }
    /// To the end of the next interval of the watched ONT.
    void finish_interval() {
        const auto since = plant.ont_configured_as(watched)->point.since;
        plant.advance(since + ((plant.now() - since) / interval + 1) * interval);
    }
    void configure(const std::function<void(OntSettings&)>& edit) {
        auto configuration = plant.configuration();
        auto& settings = configuration.onts.at(watched);
        edit(settings);
        ++settings.provision;
        plant.configure(configuration);
    }
    [[nodiscard]] Ont__get_pon_counters_response pon() const {
        return report_olt_pon(plant, watched);
    }
    [[nodiscard]] Ont__get_gem_port_counters_response gem_ports() const {
        return report_olt_gem_ports(plant, watched);
    }

    Plant plant = make_plant();
};

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

inline testing::AssertionResult none_fell(const std::vector<std::uint64_t>& before,
                                          const std::vector<std::uint64_t>& after) {
    for (std::size_t nth = 0; nth < std::min(before.size(), after.size()); ++nth) {
        if (after[nth] < before[nth]) {
            return testing::AssertionFailure() << nth << ": " << before[nth] << " to " << after[nth];
        }
    }
    return testing::AssertionSuccess();
}

} // namespace xpon::simulator
