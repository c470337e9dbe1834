#include "tests/unit/simulator/plant/plant_fixture.hpp"

#include <functional>
#include <string>

#include <gmock/gmock.h>

namespace xpon::simulator {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

/// One ONT in service.
class RestartTest : public PlantTest {
protected:
    RestartTest() : PlantTest(1) {}

    [[nodiscard]] Plant::Ont ont() const {
        return plant.onts().front();
    }
    std::vector<std::uint16_t> tell(OntCommand command) {
        return plant.command_onts(command, [](std::uint16_t) { return true; });
    }
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
        {"cut off", [this] { set_fault("ont_los", "1/1"); }, "POPUP", "POPUP", "POPUP"},
        {"without OMCI", [this] { set_fault("ont_omci", "1/1"); }, "CONFIG_FAILED", "MIB_UPLOAD", "INITIAL"},
        {"rogue", [this] { set_fault("ont_rogue", "1/1"); }, "EMERGENCY_STOP", "EMERGENCY_STOP", "INITIAL"},
        {"disabled", [this] { configure([](auto& configuration) { configuration.onts[0].enabled = false; }); },
         "DISABLED", "DISABLED", "INITIAL"},
        {"with a wrong password",
         [this] {
             configure([](auto& configuration) { configuration.pon[0].compares_passwords = true; });
             pass(5min);
         },
         "AUTH_FAILED", "AUTHENTICATION", "INITIAL"},
    };
    const auto in_service = plant;
    for (const auto& [name, prepare, before, reconfigured, rebooted] : cases) {
        SCOPED_TRACE(name);
        plant = in_service;
        prepare();
        ASSERT_EQ(state(), before);
        const auto prepared = plant;
        EXPECT_THAT(tell(OntCommand::reconfigure), ElementsAre(0));
        EXPECT_EQ(state(), reconfigured);
        EXPECT_TRUE(ont().has_local_data);
        plant = prepared;
        EXPECT_THAT(tell(OntCommand::reboot), ElementsAre(0));
        EXPECT_EQ(state(), rebooted);
        EXPECT_TRUE(ont().has_local_data);
        plant = prepared;
        tell(OntCommand::reset);
        EXPECT_EQ(state(), rebooted);
        EXPECT_EQ(ont().has_local_data, rebooted != "INITIAL");
    }
    plant = in_service;
    set_fault("ont_los", "1/1");
    pass(1s);
    EXPECT_THAT(tell(OntCommand::reboot), IsEmpty()); // not in the list
    EXPECT_EQ(state(), "GONE");
}

TEST_F(RestartTest, NothingHappensWhileTheOltBoots) {
    tell(OntCommand::reconfigure);
    const auto begin = plant.now();
    configure([](auto& configuration) { configuration.pon[1].enabled = false; });
    plant.boot(20s);
    EXPECT_EQ(plant.booted_at(), begin);
    // Of what was before the boot nothing is known.
    EXPECT_FALSE(ont().last_service);
    EXPECT_EQ(state(), "GONE");
    EXPECT_FALSE(plant.front_link_is_up(1));
    pass(19s);
    // A port that is enabled meanwhile waits for the end as well.
    configure([](auto& configuration) { configuration.pon[1].enabled = true; });
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
