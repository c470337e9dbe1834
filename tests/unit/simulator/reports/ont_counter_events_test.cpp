#include "tests/unit/simulator/reports/ont_counters_fixture.hpp"

#include <functional>

namespace xpon::simulator {
namespace {

using namespace std::chrono_literals;

TEST_F(OntCountersTest, StayWithinEveryLimit) {
    const struct {
        const char* name;
        std::function<void(OntSettings&)> set;
        double down_kbps; ///< of all GEM ports
        double up_kbps;
    } limits[] = {
        {"service", [](auto& ont) { ont.services = {{.number = 1, .downstream_kbps = 512, .upstream_kbps = 128}}; },
         512 + 12, 128},
        {"ONT", [](auto& ont) { ont.downstream_kbps = 1000, ont.upstream_kbps = 200; }, 1000, 200},
        {"T-CONT",
         [](auto& ont) {
             for (auto& service : ont.services) {
                 service.tcont = 0;
                 service.upstream_kbps = 64;
             }
         },
         1e6, 64},
    };
    const auto in_service = plant;
    for (const auto& [name, set, down_kbps, up_kbps] : limits) {
        plant = in_service;
        configure_watched(set);
        pass(10s);
        const auto before = pon();
        pass(20h);
        const auto after = pon();
        const double kbit_per_octet_s = 8.0 / 1000 / (20 * 3600);
        const double down = static_cast<double>(after.tx_bytes - before.tx_bytes) * kbit_per_octet_s;
        const double up = static_cast<double>(after.rx_bytes - before.rx_bytes) * kbit_per_octet_s;
        EXPECT_LE(down, down_kbps + 1) << name;
        EXPECT_LE(up, up_kbps + 1) << name; // with the management channel
        EXPECT_GE(up, up_kbps * 0.4) << name;
        // What found no room is seen at the user's side.
        const auto users = report_eth_pm_3(plant, watched);
        EXPECT_GT(users.drop_events[0] + report_eth_frame_ext_pm(plant, watched).upstream.veip.drop_events, 1000U)
            << name;
    }
}

TEST_F(OntCountersTest, GoOnOverConfiguringAndBeginAnewWithTheOnt) {
    pass(3h);
    const auto before = counters_of(plant, watched);
    configure_watched([](auto& ont) { ont.services[0].type = cfgdb::ProfileOntCrossConnect::ServiceType::voip; });
    EXPECT_TRUE(none_fell(before, counters_of(plant, watched))); // on its way: they stand still
    EXPECT_EQ(report_gem_port_pm(plant, watched).count, 0U);
    pass(10s);
    const auto after = counters_of(plant, watched);
    EXPECT_TRUE(none_fell(before, after));
    EXPECT_EQ(report_gem_port_pm(plant, watched).finished_intervals[0], 0U);
    // Not one octet was lost or counted twice: in ten seconds no more than that.
    constexpr std::size_t tx_bytes = offsetof(Ont__get_pon_counters_response, tx_bytes) / 8;
    EXPECT_LT(after[tx_bytes], before[tx_bytes] + 10 * (18'100'000 + 6'000'000) / 8);

    const auto everywhere = [](std::uint16_t) { return true; };
    const struct {
        const char* name;
        std::function<void()> happen;
        bool goes_on;
    } cases[] = {
        {"cut", [&] { set_fault("ont_los", "1"); }, false},
        {"without power", [&] { set_fault("ont_dying_gasp", "1/1"); }, false},
        {"reconfigured", [&] { plant.command_onts(OntCommand::reconfigure, everywhere); }, true},
        {"reset", [&] { plant.command_onts(OntCommand::reset, everywhere); }, false},
        {"rebooted", [&] { plant.command_onts(OntCommand::reboot, everywhere); }, false},
        {"with its OLT", [&] { plant.boot(20s); }, false},
    };
    pass(1h);
    const auto in_service = plant;
    for (const auto& [name, happen, goes_on] : cases) {
        plant = in_service;
        happen();
        pass(5s);
        plant.clear_all_faults();
        await("OPERATIONAL");
        EXPECT_EQ(pon().tx_bytes > 1'000'000, goes_on) << name;
    }
}

TEST_F(OntCountersTest, OfNobodyAreZero) {
    const auto all_zero = [&](std::uint16_t index) {
        return std::ranges::count(all_counters(plant, index), std::byte{}) == std::ssize(all_counters(plant, index));
    };
    pass(1h);
    EXPECT_FALSE(all_zero(watched));
    EXPECT_TRUE(all_zero(4095)); // not configured
    const auto before = pon().tx_bytes;
    configure_watched([](auto& ont) { ont.pm_collection = false; });
    EXPECT_TRUE(all_zero(watched));
    pass(1h);
    EXPECT_TRUE(all_zero(watched));
    // The OLT went on counting all the same.
    configure_watched([](auto& ont) { ont.pm_collection = true; });
    pass(1min);
    EXPECT_GT(pon().tx_bytes, before + 1'000'000);
}

} // namespace
} // namespace xpon::simulator
