#include "custom_layer/own_connection.hpp"
#include "tests/processes/live_olt.hpp"
#include "tests/support/eventually.hpp"
#include "tests/support/recording_logger.hpp"

#include <cerrno>
#include <string>

#include <gmock/gmock.h>

namespace xpon::simulator {
namespace {

using test::eventually;
using testing::HasSubstr;

using OntCall = int (*)(Ipc*, const Bitmap_ont_range*);

/// ONTs 1/1 and 1/2 are in service, 1/4 is not configured.
class CommandsTest : public LiveOltTest {
protected:
    explicit CommandsTest(const std::vector<std::string>& options = {"--onts", "64", "--configured", "48"})
        : LiveOltTest(options) {
        custom_layer::renew_own_connection(std::make_shared<test::RecordingLogger>());
    }

    static std::string uptime() {
        char text[formatted_uptime_size];
        EXPECT_EQ(custom_layer__get_formatted_uptime_str(text), 0);
        return text;
    }
    [[nodiscard]] std::string events() const {
        return root.read("var/log/events.log");
    }
    /// The template that the running configuration gives an ONT.
    [[nodiscard]] int running_template(const OntPosition& ont) const {
        cfgdb::PonOnt record;
        const auto index = record_index_of(ont);
        EXPECT_EQ(getRunDb_ZebGCfg_pon_ont(database->handle(), &record, &index), 0);
        return record.ont_template;
    }
    int save() {
        errno = 0;
        return custom_layer__configuration_save(ipc(), database->handle(), database->context(),
                                                "/configuration/save-config") == 0
                   ? 0
                   : errno;
    }
};

TEST_F(CommandsTest, PonPortsStartAgainWhileTheUptimeGoesOn) {
    const auto uptime_before = uptime();
    Bitmap_pon_port_range second;
    ASSERT_EQ(get_parsed_pon_port_range("2", &second), 0);
    ASSERT_EQ(custom_layer__reconfigure_pon_port(ipc(), &second), 0);
    EXPECT_EQ(channel(1), "ACTIVE");
    EXPECT_EQ(channel(2), "STARTING");
    EXPECT_EQ(ont_states()[served], "OPERATIONAL");
    EXPECT_EQ(ont_states().count({.port = 2, .ont = 1}), 0U);
    must({"step", "400"});
    EXPECT_EQ((ont_states()[{.port = 2, .ont = 1}]), "OPERATIONAL");

    ASSERT_EQ(custom_layer__reconfigure_olt(), 0);
    EXPECT_EQ(channel(1), "STARTING");
    EXPECT_TRUE(ont_states().empty());
    EXPECT_NE(uptime_before, "0 days, 00:00:00");
    EXPECT_GE(uptime(), uptime_before);
    EXPECT_THAT(events(), HasSubstr("reconfigure of PON ports by 0x001bffff: 2\n"));
    EXPECT_THAT(events(), HasSubstr("reconfigure of the OLT by 0x001bfffe\n"));
}

TEST_F(CommandsTest, OntsDoWhatTheyAreTold) {
    const std::pair<const char*, OntCall> cases[] = {
        {"reconfigure", custom_layer__reconfigure_ont},
        {"reboot", custom_layer__omci_reboot},
        {"reset to default", custom_layer__omci_default},
    };
    for (const auto& [name, call] : cases) {
        SCOPED_TRACE(name);
        Bitmap_ont_range range;
        ASSERT_EQ(get_parsed_ont_range("1/1,4", &range), 0);
        ASSERT_EQ(call(ipc(), &range), 0);
        EXPECT_NE(ont_states()[served], "OPERATIONAL");
        EXPECT_EQ((ont_states()[{.port = 1, .ont = 2}]), "OPERATIONAL");
        // The last one is not in service, and passed over.
        EXPECT_EQ(unactivated("1"), 1U);
        EXPECT_THAT(events(), HasSubstr(std::string(name) + " of 1 ONTs by 0x001bffff: 1/1\n"));
        must({"step", "200"});
        EXPECT_EQ(ont_states()[served], "OPERATIONAL");
    }
}

TEST_F(CommandsTest, ARebootRunsTheSavedConfigurationWhileItsCallerLives) {
    const auto states_before = ont_states();
    edit_ont(served, [](auto& ont) { ont.ont_template = 1; });
    commit();
    ASSERT_EQ(save(), 0);
    edit_ont(served, [](auto& ont) { ont.ont_template = 2; });
    commit();
    edit_ont(served, [](auto& ont) { ont.ont_template = 3; });
    must({"fault", "fan_failed", "2"});
    must({"at", "500", "fault", "fan_failed", "3"});

    ASSERT_EQ(custom_layer__reboot(reboot_now), 0) << errno;
    EXPECT_EQ(uptime(), "0 days, 00:00:00");
    EXPECT_EQ(running_template(served), 1);
    const auto pending = database->commit(nullptr);
    ASSERT_FALSE(pending);
    EXPECT_EQ(pending.error().code, core::Error::Empty);
    EXPECT_TRUE(eventually([this] { return errno_of_environment() == ECONNREFUSED; }));
    must({"step", "19.9"});
    EXPECT_EQ(errno_of_environment(), ECONNREFUSED);
    must({"step", "0.2"});
    ASSERT_TRUE(eventually([this] { return errno_of_environment() == 0 && !channel(1).empty(); }));
    EXPECT_EQ(channel(1), "STARTING");
    EXPECT_EQ(uptime(), "0 days, 00:00:20");
    must({"step", "400"});
    EXPECT_EQ(ont_states(), states_before);
    // What a tester injected or planned is none of the OLT's business.
    EXPECT_THAT(command({"state", "summary"}), HasSubstr(R"("fan_failed","target":"2")"));
    must({"step", "100"});
    EXPECT_THAT(command({"state", "summary"}), HasSubstr(R"("fan_failed","target":"3")"));
    // Commits reach the daemons as before.
    edit_ont(served, [](auto& ont) { ont.enabled = 0; });
    commit();
    EXPECT_EQ(ont_states()[served], "DISABLED");
}

TEST_F(CommandsTest, SavingNeedsTheDna) {
    ASSERT_EQ(save(), 0);
    const auto saved = root.read("configuration/save-config");
    edit_ont(served, [](auto& ont) { ont.ont_template = 1; });
    commit();
    must({"fault", "peer_error", "dna", "value", std::to_string(EROFS)});
    EXPECT_EQ(save(), EROFS);
    must({"fault", "peer_down", "dna"});
    EXPECT_TRUE(eventually([this] { return save() == ECONNREFUSED; }));
    EXPECT_EQ(root.read("configuration/save-config"), saved);
}

class OtherBoardTest : public CommandsTest {
protected:
    OtherBoardTest() : CommandsTest({"--plant", "mixed-vendors"}) {}
};

TEST_F(OtherBoardTest, TheEngineIdIsTheBoards) {
    Snmp_environment_data data;
    ASSERT_EQ(custom_layer__generating_engine_id(ipc(), &data), 0);
    EXPECT_STREQ(data.engine_id, "80007ed9030253490001f0");
}

} // namespace
} // namespace xpon::simulator
