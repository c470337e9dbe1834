#include "simulator/reports/ont_report.hpp"
#include "simulator/reports/port_report.hpp"
#include "tests/unit/simulator/plant/plant_fixture.hpp"

#include <cmath>
#include <string>
#include <tuple>
#include <vector>

#include <gmock/gmock.h>

namespace xpon::simulator {
namespace {

using namespace std::chrono_literals;
using testing::AllOf;
using testing::AnyOf;
using testing::Ge;
using testing::Le;

Bitmap_ont_range all_onts() {
    Bitmap_ont_range range{};
    range.size = max_onts;
    std::fill(std::begin(range.bits), std::end(range.bits), std::uint8_t{0xff});
    return range;
}

/// The life of one ONT.
class OntLifeTest : public PlantTest {
protected:
    OntLifeTest() : PlantTest(1) {}

    /// The states that follow until the ONT stays in one for two minutes, the present one first.
    std::vector<std::string> states_ahead() {
        std::vector<std::string> states{state()};
        for (auto unchanged = 0ms; unchanged < 2min; unchanged += 50ms) {
            pass(50ms);
            if (states.back() != state()) {
                states.push_back(state());
                unchanged = 0ms;
            }
        }
        return states;
    }
};

TEST_F(OntLifeTest, AnOntInServiceGoesItsWay) {
    using Way = std::vector<std::string>;
    using Edit = std::function<void(RunningConfiguration&)>;
    const Way whole_way{"GONE",           "INITIAL",    "STANDBY",     "SERIAL_NUMBER", "RANGING",
                        "AUTHENTICATION", "MIB_UPLOAD", "CONFIGURING", "OPERATIONAL"};
    const auto password = [](const char* text) {
        return [text](RunningConfiguration& c) {
            c.pon[0].compares_passwords = true;
            c.onts[0].password = text;
        };
    };
    const std::tuple<const char*, Edit, Way> edits[] = {
        {"disabled", [](auto& c) { c.onts[0].enabled = false; }, {"DISABLED"}},
        {"services changed", [](auto& c) { c.onts[0].provision = 2; }, {"CONFIGURING", "OPERATIONAL"}},
        {"nothing changed", [](auto&) {}, {"OPERATIONAL"}},
        {"front port disabled", [](auto& c) { c.front[0].enabled = false; }, {"OPERATIONAL"}},
        {"other serial", [](auto& c) { c.onts[0].serial = 1; }, {"SERIAL_NUMBER"}},
        {"other port", [](auto& c) { c.onts[256] = std::exchange(c.onts[0], {}); }, {"SERIAL_NUMBER"}},
        {"other number",
         [](auto& c) { c.onts[7] = std::exchange(c.onts[0], {}); },
         {"RANGING", "AUTHENTICATION", "MIB_UPLOAD", "CONFIGURING", "OPERATIONAL"}},
        {"wrong password",
         password("wrong"),
         {"GONE", "INITIAL", "STANDBY", "SERIAL_NUMBER", "RANGING", "AUTHENTICATION", "AUTH_FAILED"}},
        {"right password", password("PW01001"), whole_way},
        {"port restarted", [](auto& c) { c.pon[0].downstream_fec = false; }, whole_way},
        {"port disabled", [](auto& c) { c.pon[0].enabled = false; }, {"GONE"}},
    };
    const std::tuple<const char*, double, Way> faults[] = {
        {"ont_los", 0, {"POPUP", "GONE"}},
        {"ont_attenuation", 30, {"POPUP", "GONE"}},
        {"ont_dying_gasp", 0, {"GONE"}},
        {"ont_rogue", 0, {"EMERGENCY_STOP"}},
        {"ont_moved", 2, {"INITIAL", "STANDBY", "SERIAL_NUMBER"}},
    };
    ASSERT_EQ(state(), "OPERATIONAL");
    const auto in_service = plant;
    for (const auto& [name, edit, way] : edits) {
        plant = in_service;
        configure(edit);
        EXPECT_EQ(states_ahead(), way) << name;
    }
    for (const auto& [name, value, way] : faults) {
        plant = in_service;
        set_fault(name, "1/1", value);
        EXPECT_EQ(states_ahead(), way) << name;
    }
}

TEST_F(OntLifeTest, RepeatsWhatFailsWithoutEnd) {
    set_fault("ont_omci", "1/1");
    EXPECT_EQ(state(), "CONFIG_FAILED");
    pass(61s);
    EXPECT_EQ(state(), "MIB_UPLOAD");
    // A month of rounds: no slower than one, and still in one of its two states.
    pass(std::chrono::hours(24 * 30));
    EXPECT_THAT(state(), AnyOf("CONFIG_FAILED", "MIB_UPLOAD"));
    clear_fault("ont_omci", "1/1");
    pass(2min);
    EXPECT_EQ(state(), "OPERATIONAL");

    configure([](auto& configuration) { configuration.pon[0].reach_max_km = 1; });
    pass(std::chrono::hours(24 * 30));
    EXPECT_THAT(state(), AnyOf("RANGING", "STANDBY", "SERIAL_NUMBER"));
}

TEST_F(OntLifeTest, AnEventDuringAStartDoesNotLoseTheOnt) {
    configure([](auto& configuration) { configuration.pon[0].enabled = false; });
    configure([](auto& configuration) { configuration.pon[0].enabled = true; });
    pass(1s);
    ASSERT_EQ(plant.channel_state(1), pon_channel_starting);
    configure([](auto& configuration) { configuration.onts[0].provision = 3; });
    pass(5min);
    EXPECT_EQ(state(), "OPERATIONAL");
}

TEST(PlantWithAPast, SwitchesSomeOfItsOntsOnInTheMiddleOfIt) {
    auto aged = parameters(256);
    aged.past = 4h;
    Plant plant(aged, configured(aged, 256));
    const auto in_service_at = [&](PlantTime time) {
        plant.advance(time);
        return std::ranges::count(plant.onts(), ont_operational, [](const auto& ont) { return ont.point.state; });
    };
    const auto soon = in_service_at(10min);
    EXPECT_GT(in_service_at(4h), soon);
}

TEST(FullPlant, HasNoOnuIdForTheLastTwoOntsOfAPort) {
    const auto full = parameters(max_onts, "full");
    auto configuration = configured(full, max_onts);
    Plant plant(full, configuration);
    plant.advance(2h);
    EXPECT_FALSE(onu_id_of(plant.configuration(), 254));
    EXPECT_FALSE(onu_id_of(plant.configuration(), 255));
    configuration.onts.take(9);
    plant.configure(configuration);
    plant.advance(3h);
    EXPECT_EQ(onu_id_of(plant.configuration(), 254), 9);
    EXPECT_FALSE(onu_id_of(plant.configuration(), 255));
    for (const auto& state : report_pon_states(plant).ports) {
        EXPECT_LE(state.ont_count, 254);
        EXPECT_GE(state.ont_count, 220);
    }
}

TEST(FullPlant, ReportsAscendAndBelongTogether) {
    const auto full = parameters(max_onts, "full");
    Plant plant(full, configured(full, max_onts));
    plant.advance(2h);
    const auto states = report_ont_states(plant, all_onts());
    ASSERT_GT(states.size(), 3500U);
    int last = -1;
    for (const auto& ont : states) {
        const int index = (ont.port - 1) * 256 + ont.ont_id - 1;
        EXPECT_GT(index, std::exchange(last, index));
        EXPECT_EQ(ont.state, ont_operational);
        ASSERT_EQ(ont.alloc_count, 5);
        EXPECT_EQ(ont.alloc_ids[1], 256 + ont.alloc_ids[0] * 8);
        // The farther, the less delay is left and the less light arrives [G.984.3].
        EXPECT_THAT(ont.distance, AllOf(Ge(300U), Le(18000U)));
        const double expected = (195.83 + 50 - 35 - ont.distance * 0.0097914) * 1244.16;
        EXPECT_NEAR(ont.equalization_delay, expected, 1300);
        EXPECT_THAT(ont.rssi, AllOf(Ge(-28.0), Le(-16.0)));
        EXPECT_NEAR(ont.rssi * 10, std::round(ont.rssi * 10), 1e-9);
    }
}

} // namespace
} // namespace xpon::simulator
