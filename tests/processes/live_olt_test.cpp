#include "ipc/ipc_handle.hpp"
#include "simulator/peers/peer_table.hpp"
#include "simulator/sim_command/command_line.hpp"
#include "simulator/sim_command/scenario.hpp"
#include "tests/processes/live_olt.hpp"
#include "tests/support/eventually.hpp"
#include "xpon/peer_side/fixed_text.hpp"

#include <cerrno>
#include <chrono>
#include <sstream>

#include <fmt/format.h>
#include <gmock/gmock.h>

namespace xpon::simulator {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

TEST_F(LiveOltTest, OntsFollowCommits) {
    ASSERT_EQ(ont_states()[served], "OPERATIONAL");
    const auto strangers = unactivated("1");
    edit_ont(fresh, [](auto& ont) {
        ont.serial = serial_of(fresh);
        ont.ont_template = 1;
    });
    EXPECT_EQ(unactivated("1"), strangers); // not committed yet
    commit();
    EXPECT_EQ(unactivated("1"), strangers - 1);
    EXPECT_EQ(ont_states()[fresh], "RANGING");
    must({"step", "60"});
    EXPECT_EQ(ont_states()[fresh], "OPERATIONAL");

    // A profile in use changes, and with it every ONT that uses it; a description is nothing that an ONT is told.
    const auto edit_profile = [&](const std::function<void(cfgdb::ProfileOntDba&)>& change) {
        edit(getDb_CommonGCfg_profiles_profiles_ont_dba, setDb_CommonGCfg_profiles_profiles_ont_dba, 0, change);
        commit();
    };
    edit_profile([](auto& dba) { dba.maximum_kbps = 640; });
    EXPECT_THAT(root.read("var/log/events.log"), HasSubstr(" olt commit by 0x001bffff: ZebGCfg.pon.ont=1\n"));
    EXPECT_EQ(ont_states()[fresh], "CONFIGURING");
    must({"step", "60"});
    edit_profile([](auto& dba) { put_text(dba.name, "renamed"); });
    EXPECT_EQ(ont_states()[fresh], "OPERATIONAL");

    unsigned short index = record_index_of(fresh);
    ASSERT_EQ(setDb_init_ZebGCfg_pon_ont(database->handle(), database->context(), &index), 0);
    commit();
    EXPECT_EQ(ont_states().count(fresh), 0U);
    EXPECT_EQ(unactivated("1"), strangers);
}

TEST_F(LiveOltTest, CommitsThatADaemonMissedAreReadWhenItReturns) {
    must({"fault", "peer_down", "fsm-pon"});
    EXPECT_TRUE(test::eventually([this] { return channel(1).empty() && errno == ECONNREFUSED; }));
    edit_ont(served, [](auto& ont) { ont.enabled = 0; });
    commit();
    EXPECT_THAT(command({"state", "all"}), Not(HasSubstr("DISABLED")));
    EXPECT_EQ(errno_of_environment(), 0); // the others go on
    must({"clear", "peer_down", "fsm-pon"});
    EXPECT_TRUE(test::eventually([this] { return !channel(1).empty(); }));
    EXPECT_EQ(ont_states()[served], "DISABLED");
}

TEST_F(LiveOltTest, ACommitWithoutNoticeReachesThePlantBeforeItIsUsed) {
    edit_ont(served, [](auto& ont) { ont.enabled = 0; });
    ASSERT_TRUE(database->commit(nullptr));
    EXPECT_EQ(ont_states()[served], "DISABLED");
    // More commits than are remembered.
    for (int round = 0; round < 101; ++round) {
        edit_ont(served, [&](auto& ont) { ont.enabled = round % 2 == 0; });
        ASSERT_TRUE(database->commit(nullptr));
    }
    must({"step", "600"});
    EXPECT_EQ(ont_states()[served], "OPERATIONAL");
}

TEST_F(LiveOltTest, ASlowDaemonHoldsUpNobodyElse) {
    using Clock = std::chrono::steady_clock;
    must({"fault", "peer_slow", "system-mgr", "value", "60000"});
    EXPECT_EQ(errno_of_environment(), ETIMEDOUT);
    const auto begin = Clock::now();
    EXPECT_FALSE(ont_states().empty());
    EXPECT_LT(Clock::now() - begin, std::chrono::seconds(2));
    must({"fault", "peer_error", "fsm-pon", "value", std::to_string(ENOSPC)});
    EXPECT_EQ(channel(1), "");
    EXPECT_EQ(errno, ENOSPC);
}

TEST_F(LiveOltTest, DamagedRequestsAreRefused) {
    const std::vector<std::byte> nothing;
    const std::vector<std::byte> too_much(100'000, std::byte{0xff});
    for (const auto& row : peer_side::operation_owners) {
        const auto operation = static_cast<std::uint16_t>(row.operation);
        EXPECT_NE(ipc()->request(row.peer, operation, too_much, Ipc::default_deadline).status, 0) << operation;
        // Every operation is known to its owner, with or without a question.
        EXPECT_NE(ipc()->request(row.peer, operation, nothing, Ipc::default_deadline).status, EOPNOTSUPP) << operation;
    }
    for (const auto& peer : peer_table) {
        constexpr std::uint16_t unknown = 0xffff;
        EXPECT_EQ(ipc()->request(peer.address, unknown, nothing, Ipc::default_deadline).status, EOPNOTSUPP);
    }
    Bitmap_ont_range range;
    prepare_bitmap_ont(&range);
    range.size = 0xffffffff;
    Ont__get_state_info_response* response = nullptr;
    EXPECT_EQ(custom_layer__get_ont_state_info_by_range(ipc(), &range, &response), -1);
    EXPECT_EQ(errno, EINVAL);
    EXPECT_EQ(custom_layer__omci_reboot(ipc(), &range), -1);
    EXPECT_EQ(errno, EINVAL);
    for (const std::uint8_t port : std::vector<std::uint8_t>{0, 17, 255}) {
        Front_port_info info;
        EXPECT_EQ(custom_layer__get_front_port_info(ipc(), port, &info), -1);
        EXPECT_EQ(errno, ERANGE);
        Pon_port_type type{};
        EXPECT_EQ(custom_layer__get_pon_port_type(ipc(), port, &type), -1);
        EXPECT_EQ(errno, ERANGE);
    }
}

TEST_F(LiveOltTest, AScenarioHappensInThePlantsTime) {
    std::istringstream scenario("# cut a port, then join it again\n\n"
                                "at 10 fault ont_los 1\n"
                                "at 40 clear ont_los 1\n"
                                R"({"at_s": 500, "command": {"fault": "slot_corrupt", "target": 1}})");
    const auto steps = parse_scenario(scenario);
    ASSERT_EQ(steps.size(), 3U);
    for (const auto& step : steps) {
        ASSERT_THAT(control->ask(step.command), HasSubstr(R"("ok":true)"));
    }
    const auto is_slot_valid = [] {
        Firmware_version_info firmware;
        EXPECT_EQ(custom_layer__get_firmware_version_info(1, &firmware), 0);
        return firmware.valid != 0;
    };
    must({"step", "9.9"});
    EXPECT_EQ(ont_states()[served], "OPERATIONAL");
    must({"step", "0.15"});
    EXPECT_EQ(ont_states()[served], "POPUP");
    // Both ends of the fault lie within one step, and so does the way back into service.
    must({"step", "400"});
    EXPECT_EQ(ont_states()[served], "OPERATIONAL");
    EXPECT_TRUE(is_slot_valid());
    must({"step", "100"});
    EXPECT_FALSE(is_slot_valid());
}

TEST_F(LiveOltTest, ASnapshotBringsBackAllButTheConfiguration) {
    must({"fault", "ont_los", "1", "for", "30"});
    must({"step", "20"});
    const auto cut = command({"state", "all"});
    must({"snapshot", "cut"});
    must({"step", "400"});
    EXPECT_EQ(ont_states()[served], "OPERATIONAL");
    must({"load", "cut"});
    EXPECT_EQ(command({"state", "all"}), cut);
    EXPECT_EQ(ont_states().count(served), 0U);
    must({"step", "400"});
    EXPECT_EQ(ont_states()[served], "OPERATIONAL") << "the fault of then ends as it did";

    edit<cfgdb::PonPort>(getDb_ZebGCfg_pon_port_state, setDb_ZebGCfg_pon_port_state, 0,
                         [](auto& port) { port.enabled = 0; });
    must({"fault", "commit_refused", "igmp"});
    EXPECT_EQ(database->commit(endpoint).error().code, core::Error::InvalidState);
    must({"clear", "commit_refused", "igmp"});
    must({"fault", "peer_error", "dna"});
    commit();
    must({"load", "cut"});
    must({"step", "400"});
    EXPECT_EQ(ont_states().count(served), 0U) << "the port is disabled now";
}

TEST_F(LiveOltTest, RefusedCommandsSayWhyAndChangeNothing) {
    const auto before = command({"state", "all"});
    const std::pair<const char*, const char*> cases[] = {
        {"", "one line with a JSON object"},
        {"{}", "a command is an object with"},
        {R"({"fault":"ont_lo","target":"1/1"})", "no fault 'ont_lo'"},
        {R"({"fault":"ont_los","target":"17"})", "PON port from 1 to 16, not '17'"},
        {R"({"fault":"ont_los","target":"1/257"})", "not '1/257'"},
        {R"({"fault":"ont_los","target":[1]})", "target must be a text"},
        {R"({"fault":"ont_los","target":"1","for_s":-1})", "for_s must be a number from 0"},
        {R"({"fault":"ont_los","target":"1","for_s":1e300})", "for_s must be a number from 0"},
        {R"({"fault":"ont_los","target":"1","for":1})", "not 'for'"},
        {R"({"fault":"ont_los","target":"1","value":1})", "takes no value"},
        {R"({"fault":"ont_attenuation","target":"1/1"})", "needs a value: dB, from 0 to 40"},
        {R"({"fault":"ont_moved","target":"1/1","value":17})", "value must be a number from 1 to 16"},
        {R"({"fault":"peer_down","target":"nobody"})", "one of system-mgr"},
        {R"({"fault":"pppoe_blocked","target":"3/17"})", "1/1/1 to 16/256/8, not '3/17'"},
        {R"({"fault":"pppoe_blocked","target":"3/257/1"})", "not '3/257/1'"},
        {R"({"fault":"pppoe_blocked","target":"3/17/1/1"})", "not '3/17/1/1'"},
        {R"({"clear":"ont_los","target":"1"})", "there is no ont_los pon/1 to clear"},
        {R"({"step_s":-1})", "step_s must be a number"},
        {R"({"clock":"fast"})", "clock must be real, stepped or scaled"},
        {R"({"clock":"scaled"})", "takes a rate"},
        {R"({"at_s":1,"command":{"at_s":1}})", "no at_s or load itself"},
        {R"({"snapshot":""})", "snapshot needs a name"},
        {R"({"load":"x"})", "no snapshot 'x'"},
        {R"({"state":"none"})", "all, summary"},
    };
    for (const auto& [line, complaint] : cases) {
        const auto answer = control->ask(line);
        EXPECT_THAT(answer, HasSubstr(R"("ok":false)")) << line;
        EXPECT_THAT(answer, HasSubstr(complaint)) << line;
    }
    EXPECT_EQ(command({"state", "all"}), before);
}

TEST(CommandLine, NamesTheWordAtFault) {
    const std::pair<const char*, const char*> cases[] = {
        {"fault", "KIND is required"},
        {"fault x 1 2", "not expected: 2"},
        {"fault x 1 for", "SECONDS is required"},
        {"step 1 2", "not expected: 2"},
        {"step soon", "SECONDS = soon"},
        {"at 1", "COMMAND is required"},
        {"at 1 stop", "no command 'stop'"},
        {"faults --help", "not expected: --help"},
    };
    for (const auto& [words, complaint] : cases) {
        std::istringstream scenario(fmt::format("step 1\n{}\n", words));
        try {
            parse_scenario(scenario);
            ADD_FAILURE() << complaint;
        } catch (const std::runtime_error& error) {
            EXPECT_THAT(error.what(), testing::AllOf(StartsWith("Line 2: "), HasSubstr(complaint)));
        }
    }
    EXPECT_EQ(command_of({"fault", "ont_los", "3/17", "value", "-2", "for", "30"}),
              R"({"fault":"ont_los","target":"3/17","value":-2,"for_s":30})");
    EXPECT_EQ(command_of({"state"}), R"({"state":"summary"})");
}

} // namespace
} // namespace xpon::simulator
