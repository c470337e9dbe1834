#include "simulator/plant/plant.hpp"
#include "tests/unit/simulator/triple_play.hpp"

#include <functional>
#include <string>

#include <gmock/gmock.h>

namespace xpon::simulator {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr OntPosition first{.port = 1, .ont = 1};

/// A plant in service whose ONT 1/1 is watched. It has power with this seed.
class RestartTest : public testing::Test {
protected:
    RestartTest() {
        pass(10min);
        EXPECT_EQ(state(), "OPERATIONAL");
    }

    static RunningConfiguration configuration() {
        RunningConfiguration configuration;
        configuration.onts[record_index_of(first)] = {
            .serial = serial_of(first), .services = triple_play(), .tconts = 3, .provision = 1};
        return configuration;
    }
    [[nodiscard]] Plant::Ont ont() const {
        return plant.onts().front();
    }
    [[nodiscard]] std::string state() const {
        return ont().point.state == ont_gone ? "GONE" : ont_state_to_str(ont().point.state);
    }
    void pass(PlantTime time) {
        plant.advance(plant.now() + time);
    }
    std::vector<std::uint16_t> tell(OntCommand command) {
        return plant.command_onts(command, [](std::uint16_t) { return true; });
    }
    void set(const char* kind, const char* target) {
        std::string complaint;
        const auto& rule = *find_fault(kind);
        plant.set_fault({.kind = rule.kind, .target = parse_target(rule, target, complaint).value()});
    }

    Plant plant{{.plant = find_plant("demo"), .size = {.onts = 32, .configured = 0}, .seed = 1}, configuration()};
};

TEST_F(RestartTest, WhereAnOntGoesDependsOnWhereItIs) {
    const struct {
        const char* name;
        std::function<void()> prepare;
        std::string before;
        std::string reconfigured;
        std::string rebooted;
    } cases[] = {
        {"in service", [] {}, "OPERATIONAL", "MIB_UPLOAD", "INITIAL"},
        {"cut off", [this] { set("ont_los", "1/1"); }, "POPUP", "POPUP", "POPUP"},
        {"without OMCI", [this] { set("ont_omci", "1/1"); }, "CONFIG_FAILED", "MIB_UPLOAD", "INITIAL"},
        {"rogue", [this] { set("ont_rogue", "1/1"); }, "EMERGENCY_STOP", "EMERGENCY_STOP", "INITIAL"},
        {"disabled",
         [this] {
             auto disabled = configuration();
             disabled.onts.begin()->second.enabled = false;
             plant.configure(disabled);
         },
         "DISABLED", "DISABLED", "INITIAL"},
        {"with a wrong password",
         [this] {
             auto wrong = configuration();
             wrong.pon[0].compares_passwords = true;
             plant.configure(wrong);
             pass(5min);
         },
         "AUTH_FAILED", "AUTHENTICATION", "INITIAL"},
    };
    for (const auto& [name, prepare, before, reconfigured, rebooted] : cases) {
        SCOPED_TRACE(name);
        plant.clear_all_faults();
        plant.configure(configuration());
        pass(10min);
        ASSERT_EQ(state(), "OPERATIONAL");
        prepare();
        ASSERT_EQ(state(), before);
        const auto prepared = plant;
        EXPECT_THAT(tell(OntCommand::reconfigure), ElementsAre(record_index_of(first)));
        EXPECT_EQ(state(), reconfigured);
        EXPECT_TRUE(ont().has_local_data);
        plant = prepared;
        EXPECT_THAT(tell(OntCommand::reboot), ElementsAre(record_index_of(first)));
        EXPECT_EQ(state(), rebooted);
        EXPECT_TRUE(ont().has_local_data);
        plant = prepared;
        tell(OntCommand::reset);
        EXPECT_EQ(state(), rebooted);
        EXPECT_EQ(ont().has_local_data, rebooted != "INITIAL");
        plant = prepared;
    }
    plant.clear_all_faults();
    pass(10min);
    set("ont_los", "1/1");
    pass(1s);
    EXPECT_THAT(tell(OntCommand::reboot), IsEmpty()); // not in the list
    EXPECT_EQ(state(), "GONE");
}

TEST_F(RestartTest, AnOntThatRebootsHasServed) {
    const auto since = ont().point.since;
    tell(OntCommand::reboot);
    ASSERT_TRUE(ont().last_service);
    EXPECT_EQ(ont().last_service->since, since);
    EXPECT_EQ(ont().last_service->until, plant.now());
}

TEST_F(RestartTest, NothingHappensWhileTheOltBoots) {
    tell(OntCommand::reconfigure);
    const auto begin = plant.now();
    auto disabled = configuration();
    disabled.pon[1].enabled = false;
    plant.configure(disabled);
    plant.boot(20s);
    EXPECT_EQ(plant.booted_at(), begin);
    // Of what was before the boot nothing is known.
    EXPECT_FALSE(ont().last_service);
    EXPECT_EQ(state(), "GONE");
    EXPECT_FALSE(plant.front_link_is_up(1));
    pass(19s);
    // A port that is enabled meanwhile waits for the end as well.
    plant.configure(configuration());
    EXPECT_TRUE(plant.is_booting());
    for (unsigned port = 1; port <= pon_ports; ++port) {
        EXPECT_EQ(plant.channel_state(port), pon_channel_starting) << port;
    }
    pass(1s);
    EXPECT_FALSE(plant.is_booting());
    pass(2s);
    EXPECT_TRUE(plant.front_link_is_up(1));
    EXPECT_EQ(plant.channel_state(2), pon_channel_starting);
    pass(1s);
    EXPECT_EQ(plant.channel_state(1), pon_channel_active);
    EXPECT_EQ(plant.channel_state(2), pon_channel_active);
    EXPECT_EQ(state(), "INITIAL");
    EXPECT_FALSE(ont().point.from_power_on); // it had power all the time
    pass(10min);
    EXPECT_EQ(state(), "OPERATIONAL");
}

} // namespace
} // namespace xpon::simulator
