#include "simulator/plant/board_report.hpp"
#include "simulator/plant/ont_report.hpp"
#include "simulator/plant/plant.hpp"
#include "simulator/plant/port_report.hpp"
#include "tests/unit/simulator/triple_play.hpp"
#include "xpon/custom_layer/custom_layer.h"
#include "xpon/ipc/payload.hpp"

#include <cmath>
#include <string>
#include <vector>

#include <gmock/gmock.h>

namespace xpon::simulator {
namespace {

using namespace std::chrono_literals;
using testing::AllOf;
using testing::AnyOf;
using testing::ElementsAre;
using testing::Ge;
using testing::Le;

constexpr OntPosition first{.port = 1, .ont = 1};

PlantParameters parameters(unsigned onts, std::string_view plant = "demo", std::uint64_t seed = 1) {
    return {.plant = find_plant(plant), .size = {.onts = onts, .configured = 0}, .seed = seed};
}

Bitmap_ont_range all_onts() {
    Bitmap_ont_range range{};
    range.size = max_onts;
    std::fill(std::begin(range.bits), std::end(range.bits), std::uint8_t{0xff});
    return range;
}

Bitmap_pon_port_range all_ports() {
    Bitmap_pon_port_range range{};
    range.size = pon_ports + 1;
    std::fill(std::begin(range.bits), std::end(range.bits), std::uint8_t{0xff});
    return range;
}

OntSettings settings_of(const OntPosition& ont) {
    return {.serial = serial_of(ont), .services = triple_play(), .tconts = 3, .provision = 1};
}

/// The first `onts` ones of a plant, each where it is.
RunningConfiguration configured(unsigned onts) {
    RunningConfiguration configuration;
    for (unsigned nth = 0; nth < onts; ++nth) {
        configuration.onts[record_index_of(position_of(nth))] = settings_of(position_of(nth));
    }
    return configuration;
}

FaultTarget target(const char* kind, const char* text) {
    std::string complaint;
    return parse_target(*find_fault(kind), text, complaint).value();
}

Fault fault(const char* kind, const char* text, double value = 0) {
    return {.kind = find_fault(kind)->kind, .target = target(kind, text), .value = value};
}

/// A plant whose ONT 1/1 is watched. Every ONT of the first port has power with this seed.
class PlantTest : public testing::Test {
protected:
    [[nodiscard]] std::string state() const {
        const auto state = plant.onts().front().point.state;
        return state == ont_gone ? "GONE" : ont_state_to_str(state);
    }
    void pass(PlantTime time) {
        plant.advance(plant.now() + time);
    }
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
    void configure(const std::function<void(RunningConfiguration&)>& edit) {
        auto configuration = plant.configuration();
        edit(configuration);
        plant.configure(configuration);
    }
    [[nodiscard]] std::size_t unactivated() const {
        return report_unactivated(plant, all_ports()).size();
    }

    Plant plant{parameters(1), {}};
};

TEST_F(PlantTest, AnUnknownOntIsFoundAndGoesIntoServiceOnceConfigured) {
    EXPECT_THAT(states_ahead(), ElementsAre("GONE", "INITIAL", "STANDBY", "SERIAL_NUMBER"));
    ASSERT_EQ(unactivated(), 1U);
    const auto seen = report_unactivated(plant, all_ports()).front();
    EXPECT_EQ(seen.port, 1);
    EXPECT_STREQ(seen.password, "PW01001");

    configure([](auto& configuration) { configuration.onts[0] = settings_of(first); });
    EXPECT_EQ(unactivated(), 0U);
    EXPECT_EQ(state(), "RANGING");
    EXPECT_THAT(states_ahead(), ElementsAre("RANGING", "AUTHENTICATION", "MIB_UPLOAD", "CONFIGURING", "OPERATIONAL"));

    configure([](auto& configuration) { configuration.onts.clear(); });
    EXPECT_EQ(unactivated(), 1U);
    EXPECT_TRUE(report_ont_states(plant, all_onts()).empty());
}

TEST_F(PlantTest, TimesAreThoseOfTheStandards) {
    plant.configure(configured(1));
    PlantTime initial{};
    while (state() != "INITIAL") {
        pass(50ms);
    }
    initial = plant.now();
    EXPECT_EQ(initial, 3s); // the port's start
    while (state() != "STANDBY") {
        pass(50ms);
    }
    EXPECT_THAT((plant.now() - initial).count(), AllOf(Ge(30'000), Le(60'050)));
    while (state() != "RANGING") {
        pass(50ms);
    }
    // A discovery window, counted from the port's start.
    EXPECT_EQ((plant.now() - 3s) % 10s, 0s);
    const auto ranging = plant.now();
    while (state() != "OPERATIONAL") {
        pass(50ms);
    }
    // Ranging 1 to 2 s, authentication 0.5, MIB upload 3 to 6, four services 1 + 4 * 0.5.
    EXPECT_THAT((plant.now() - ranging).count(), AllOf(Ge(7'500), Le(11'600)));
}

/// What happens to an ONT in service, and its way from there.
struct Event {
    const char* name;
    std::function<void(RunningConfiguration&)> edit;
    const char* fault = "";
    double value = 0;
    std::vector<std::string> way;
};

class InServiceTest : public PlantTest, public testing::WithParamInterface<Event> {};

TEST_P(InServiceTest, GoesItsWay) {
    plant.configure(configured(1));
    pass(5min);
    ASSERT_EQ(state(), "OPERATIONAL");
    if (GetParam().edit) {
        configure(GetParam().edit);
    } else {
        plant.set_fault(fault(GetParam().fault, "1/1", GetParam().value));
    }
    EXPECT_EQ(states_ahead(), GetParam().way);
}

const std::vector<std::string> whole_way{"INITIAL",        "STANDBY",    "SERIAL_NUMBER", "RANGING",
                                         "AUTHENTICATION", "MIB_UPLOAD", "CONFIGURING",   "OPERATIONAL"};

std::vector<std::string> gone_and(std::vector<std::string> way) {
    way.insert(way.begin(), "GONE");
    return way;
}

INSTANTIATE_TEST_SUITE_P(
    Plant, InServiceTest,
    testing::Values(
        Event{"disabled", [](auto& c) { c.onts[0].enabled = false; }, "", 0, {"DISABLED"}},
        Event{"services_changed", [](auto& c) { c.onts[0].provision = 2; }, "", 0, {"CONFIGURING", "OPERATIONAL"}},
        Event{"nothing_changed", [](auto&) {}, "", 0, {"OPERATIONAL"}},
        Event{"front_port_disabled", [](auto& c) { c.front[0].enabled = false; }, "", 0, {"OPERATIONAL"}},
        Event{"other_serial", [](auto& c) { c.onts[0].serial = 1; }, "", 0, {"SERIAL_NUMBER"}},
        Event{"moved_in_configuration",
              [](auto& c) { c.onts[256] = std::exchange(c.onts[0], {}); },
              "",
              0,
              {"SERIAL_NUMBER"}},
        Event{"other_number",
              [](auto& c) { c.onts[7] = std::exchange(c.onts[0], {}); },
              "",
              0,
              {"RANGING", "AUTHENTICATION", "MIB_UPLOAD", "CONFIGURING", "OPERATIONAL"}},
        Event{"wrong_password",
              [](auto& c) {
                  c.pon[0].compares_passwords = true;
                  c.onts[0].password = "wrong";
              },
              "", 0, gone_and({"INITIAL", "STANDBY", "SERIAL_NUMBER", "RANGING", "AUTHENTICATION", "AUTH_FAILED"})},
        Event{"right_password",
              [](auto& c) {
                  c.pon[0].compares_passwords = true;
                  c.onts[0].password = "PW01001";
              },
              "", 0, gone_and(whole_way)},
        Event{"port_restarted", [](auto& c) { c.pon[0].downstream_fec = false; }, "", 0, gone_and(whole_way)},
        Event{"port_disabled", [](auto& c) { c.pon[0].enabled = false; }, "", 0, {"GONE"}},
        Event{"fibre_cut", {}, "ont_los", 0, {"POPUP", "GONE"}},
        Event{"too_weak", {}, "ont_attenuation", 30, {"POPUP", "GONE"}},
        Event{"power_lost", {}, "ont_dying_gasp", 0, {"GONE"}}, Event{"rogue", {}, "ont_rogue", 0, {"EMERGENCY_STOP"}},
        Event{"moved", {}, "ont_moved", 2, {"INITIAL", "STANDBY", "SERIAL_NUMBER"}}),
    [](const auto& instance) { return instance.param.name; });

TEST_F(PlantTest, RepeatsWhatFailsWithoutEnd) {
    plant.configure(configured(1));
    pass(5min);
    plant.set_fault(fault("ont_omci", "1/1"));
    EXPECT_EQ(state(), "CONFIG_FAILED");
    pass(61s);
    EXPECT_EQ(state(), "MIB_UPLOAD");
    // A month of rounds: no slower than one, and still in one of its two states.
    pass(std::chrono::hours(24 * 30));
    EXPECT_THAT(state(), AnyOf("CONFIG_FAILED", "MIB_UPLOAD"));
    plant.clear_fault(FaultKind::ont_omci, target("ont_omci", "1/1"));
    pass(2min);
    EXPECT_EQ(state(), "OPERATIONAL");

    configure([](auto& configuration) { configuration.pon[0].reach_max_km = 1; });
    pass(std::chrono::hours(24 * 30));
    EXPECT_THAT(state(), AnyOf("RANGING", "STANDBY", "SERIAL_NUMBER"));
}

TEST_F(PlantTest, AFaultEndsByItself) {
    plant.configure(configured(1));
    pass(5min);
    auto los = fault("ont_los", "1");
    los.until = plant.now() + 30s;
    plant.set_fault(los);
    pass(29s);
    EXPECT_EQ(state(), "GONE");
    // Nobody asked at the moment of its end.
    pass(5min);
    EXPECT_EQ(state(), "OPERATIONAL");
    EXPECT_TRUE(plant.faults().all().empty());
    EXPECT_LT(plant.onts().front().point.since, plant.now() - 4min);
}

TEST_F(PlantTest, ARogueIsStoppedHoweverItComesBack) {
    plant.configure(configured(1));
    plant.set_fault(fault("ont_rogue", "1/1"));
    pass(5min);
    EXPECT_EQ(state(), "EMERGENCY_STOP");
    configure([](auto& configuration) { configuration.pon[0].enabled = false; });
    configure([](auto& configuration) { configuration.pon[0].enabled = true; });
    pass(5min);
    EXPECT_EQ(state(), "EMERGENCY_STOP");
    plant.clear_all_faults();
    pass(5min);
    EXPECT_EQ(state(), "OPERATIONAL");
}

TEST_F(PlantTest, AnEventDuringAStartDoesNotLoseTheOnt) {
    plant.configure(configured(1));
    pass(5min);
    configure([](auto& configuration) { configuration.pon[0].enabled = false; });
    pass(10s);
    configure([](auto& configuration) { configuration.pon[0].enabled = true; });
    pass(1s);
    ASSERT_EQ(plant.channel_state(1), pon_channel_starting);
    configure([](auto& configuration) { configuration.onts[0].provision = 3; });
    pass(5min);
    EXPECT_EQ(state(), "OPERATIONAL");
}

TEST_F(PlantTest, FrontPortsFollowTheirConfiguration) {
    pass(10s);
    ASSERT_TRUE(plant.front_link_is_up(1));
    configure([](auto& configuration) { configuration.front[0].enabled = false; });
    EXPECT_FALSE(plant.front_link_is_up(1));
    EXPECT_STREQ(report_front_port(plant, 1).speed, "none");
    configure([](auto& configuration) { configuration.front[0] = {.enabled = true, .speed_mbps = 1000}; });
    pass(1s);
    EXPECT_FALSE(plant.front_link_is_up(1));
    pass(1s);
    EXPECT_TRUE(plant.front_link_is_up(1));
    EXPECT_STREQ(report_front_port(plant, 1).speed, "1G");
    configure([](auto& configuration) { configuration.front[2].speed_mbps = 10000; });
    EXPECT_FALSE(plant.front_link_is_up(3)); // its module has no 10G
}

TEST_F(PlantTest, ModulesWarmUp) {
    plant.set_fault(fault("module_absent", "pon/1"));
    EXPECT_EQ(plant.channel_state(1), pon_channel_no_module);
    EXPECT_EQ(report_pon_modules(plant).ports[0].sfp.condition, sfp_absent);
    pass(1h);
    plant.clear_fault(FaultKind::module_absent, target("module_absent", "pon/1"));
    const auto cold = report_pon_modules(plant).ports[0].temperature;
    pass(20min);
    EXPECT_GT(report_pon_modules(plant).ports[0].temperature, cold + 3);
    plant.set_fault(fault("module_hot", "pon/1", 50));
    EXPECT_STREQ(report_pon_modules(plant).ports[0].sfp.condition_text, "Alarm");
}

TEST(FullPlant, HasNoOnuIdForTheLastTwoOntsOfAPort) {
    auto configuration = configured(max_onts);
    Plant plant(parameters(max_onts, "full"), configuration);
    plant.advance(2h);
    EXPECT_FALSE(plant.onu_id_of(254));
    EXPECT_FALSE(plant.onu_id_of(255));
    configuration.onts.erase(9);
    plant.configure(configuration);
    plant.advance(3h);
    EXPECT_EQ(plant.onu_id_of(254), 9);
    EXPECT_FALSE(plant.onu_id_of(255));
    for (const auto& state : report_pon_states(plant).ports) {
        EXPECT_LE(state.ont_count, 254);
        EXPECT_GE(state.ont_count, 220);
    }
}

TEST(FullPlant, ReportsAscendAndBelongTogether) {
    Plant plant(parameters(max_onts, "full"), configured(max_onts));
    plant.advance(2h);
    const auto states = report_ont_states(plant, all_onts());
    ASSERT_GT(states.size(), 3500U);
    int last = -1;
    for (const auto& ont : states) {
        const int index = (ont.port - 1) * 256 + ont.ont_id - 1;
        EXPECT_GT(index, std::exchange(last, index));
        EXPECT_EQ(ont.state, ont_operational);
        ASSERT_EQ(ont.alloc_count, 4);
        EXPECT_EQ(ont.alloc_ids[1], 256 + ont.alloc_ids[0] * 8);
        // The farther, the less delay is left and the less light arrives [G.984.3].
        EXPECT_THAT(ont.distance, AllOf(Ge(300U), Le(18000U)));
        const double expected = (195.83 + 50 - 35 - ont.distance * 0.0097914) * 1244.16;
        EXPECT_NEAR(ont.equalization_delay, expected, 1300);
        EXPECT_THAT(ont.rssi, AllOf(Ge(-28.0), Le(-16.0)));
        EXPECT_NEAR(ont.rssi * 10, std::round(ont.rssi * 10), 1e-9);
    }
}

std::vector<std::byte> everything(const Plant& plant) {
    std::vector<std::byte> bytes;
    const auto add = [&](const std::vector<std::byte>& part) { bytes.insert(bytes.end(), part.begin(), part.end()); };
    add(ipc::record_payload(report_environment(plant)));
    add(ipc::record_payload(report_pon_states(plant)));
    add(ipc::record_payload(report_pon_modules(plant)));
    add(ipc::record_payload(report_front_links(plant)));
    for (unsigned port = 1; port <= front_ports; ++port) {
        add(ipc::record_payload(report_front_port(plant, port)));
    }
    const auto states = report_ont_states(plant, all_onts());
    add(ipc::list_payload(std::span(states)));
    const auto unactivated = report_unactivated(plant, all_ports());
    add(ipc::list_payload(std::span(unactivated)));
    return bytes;
}

TEST(PlantDeterminism, EqualHistoriesGiveEqualBytes) {
    const auto play = [](std::uint64_t seed, bool asks_often) {
        Plant plant(parameters(512, "faulty", seed), configured(400));
        for (auto now = 0s; now < 400s; now += 7s) {
            plant.advance(now);
            if (now == 210s) {
                plant.configure(configured(450));
                plant.set_fault({.kind = FaultKind::ont_los, .target = target("ont_los", "3"), .until = now + 40s});
            }
            if (asks_often) {
                everything(plant);
            }
        }
        plant.advance(401s);
        return everything(plant);
    };
    const auto bytes = play(1, false);
    EXPECT_EQ(play(1, true), bytes);
    EXPECT_NE(play(2, false), bytes);
}

} // namespace
} // namespace xpon::simulator
