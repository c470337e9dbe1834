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

} // namespace
} // namespace xpon::simulator
