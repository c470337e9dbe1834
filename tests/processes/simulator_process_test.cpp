#include "simulator/peers/peer_table.hpp"
#include "simulator/plant/ont_layout.hpp"
#include "simulator/sim_command/command_line.hpp"
#include "simulator/sim_command/control_client.hpp"
#include "tests/support/process.hpp"
#include "tests/support/temporary_olt_root.hpp"
#include "xpon/cfgdb/cfgdb_wrapper.hpp"
#include "xpon/cfgdb/element_functions.hpp"

#include <csignal>
#include <string>
#include <vector>

#include <gmock/gmock.h>

namespace xpon::simulator {
namespace {

using testing::HasSubstr;

class Simulator : public test::Process {
public:
    explicit Simulator(std::vector<std::string> arguments) : Process(with_program(std::move(arguments)), {}) {}

    std::optional<int> end(int signal) {
        send_signal(signal);
        return wait();
    }

private:
    static std::vector<std::string> with_program(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), OLT_SIMULATOR);
        return arguments;
    }
};

class SimulatorTest : public testing::Test {
protected:
    static std::vector<unsigned> configured_onts() {
        const cfgdb::CfgDbWrapper database("test");
        std::vector<unsigned> found;
        for (unsigned short index = 0; index < max_onts; ++index) {
            cfgdb::PonOnt ont;
            EXPECT_EQ(getRunDb_ZebGCfg_pon_ont(database.handle(), &ont, &index), 0);
            if (ont.serial != 0) {
                EXPECT_EQ(ont.serial, serial_of({.port = index / 256U + 1, .ont = index % 256U + 1}));
                EXPECT_EQ(ont.enabled, 1);
                found.push_back(index);
            }
        }
        return found;
    }

    test::TemporaryOltRoot root;
};

constexpr auto ready = "olt_simulator is ready";

TEST_F(SimulatorTest, StopsOnSignalsAndLeavesNothingBehind) {
    for (const int signal : {SIGTERM, SIGINT}) {
        Simulator simulator({"--plant", "empty"});
        ASSERT_TRUE(simulator.wait_for_line(ready));
        EXPECT_EQ(root.read("run/olt_simulator.pid"), std::to_string(simulator.pid()) + "\n");
        EXPECT_EQ(root.read("run/board"), "pon_ports 16\nfront_ports 8\n");
        EXPECT_EQ(simulator.end(signal), 0);
        EXPECT_FALSE(std::filesystem::exists(root.path() / "run/olt_simulator.pid"));
        EXPECT_FALSE(std::filesystem::exists(root.path() / "run/board"));
        EXPECT_TRUE(std::filesystem::is_empty(root.path() / "run/ipc"));
    }
}

TEST_F(SimulatorTest, GoesOnWhereAKilledOneLeftOff) {
    const std::vector<std::string> options{"--clock-rate", "0", "--onts", "64", "--configured", "32"};
    const auto ask = [](const std::vector<std::string>& words) { return ControlClient().ask(command_of(words)); };
    std::string before;
    std::string subscribers;
    {
        Simulator first(options);
        ASSERT_TRUE(first.wait_for_line(ready));
        ask({"step", "4000"});
        ask({"fault", "ont_los", "1/2", "for", "3000"});
        ask({"fault", "pppoe_blocked", "2/1/1"});
        ask({"at", "1000", "fault", "ont_dying_gasp", "3/1"});
        ask({"lease", "1/1/3", "drop"});
        ask({"step", "20"});
        ask({"session", "1/1/1", "drop"});
        ask({"group", "1/1/2", "release"});
        ask({"traffic", "1/1/1", "start", "evening"});
        subscribers = ask({"state", "subscribers"});
        before = ask({"state"});
        first.end(SIGKILL);
    }
    auto later = options;
    later.insert(later.end(), {"--uptime", "7"});
    std::string stepped;
    {
        Simulator second(later);
        ASSERT_TRUE(second.wait_for_line(ready));
        EXPECT_EQ(ask({"state"}), before);
        EXPECT_EQ(ask({"state", "subscribers"}), subscribers);
        ask({"step", "5000"});
        stepped = ask({"state"});
        EXPECT_THAT(stepped, HasSubstr(R"("scheduled":0)"));
        EXPECT_THAT(stepped, HasSubstr(R"("fault":"ont_dying_gasp","target":"3/1")"));
        second.end(SIGKILL);
    }
    Simulator other({"--clock-rate", "0", "--onts", "64", "--seed", "2"});
    ASSERT_TRUE(other.wait_for_line(ready));
    EXPECT_THAT(ask({"state"}), HasSubstr(R"("faults":[])"));
}

TEST_F(SimulatorTest, ServesAnOltRootAloneUntilItIsKilled) {
    Simulator first({"--plant", "empty"});
    ASSERT_TRUE(first.wait_for_line(ready));
    Simulator second({"--plant", "empty"});
    EXPECT_EQ(second.wait(), 1);
    EXPECT_EQ(second.output(), "olt_simulator: process " + std::to_string(first.pid()) + " simulates the OLT in " +
                                   root.path().string() + "/ already; stop it first\n");
    EXPECT_EQ(root.read("run/olt_simulator.pid"), std::to_string(first.pid()) + "\n");
    EXPECT_TRUE(ipc::make_zmq_ipc({0x1bffff}, "none").value()->connect(peer_table.front().address));

    EXPECT_EQ(first.end(SIGKILL), 128 + SIGKILL);
    Simulator third({"--plant", "empty"});
    EXPECT_TRUE(third.wait_for_line(ready));
}

TEST_F(SimulatorTest, ConfiguresAFreshOltOnce) {
    {
        Simulator simulator({"--onts", "40", "--configured", "18"});
        ASSERT_TRUE(simulator.wait_for_line(ready));
        EXPECT_EQ(simulator.end(SIGTERM), 0);
    }
    std::vector<unsigned> expected{0, 1, 256, 257};
    for (unsigned port = 3; port <= 16; ++port) {
        expected.push_back((port - 1) * 256);
    }
    EXPECT_EQ(configured_onts(), expected);
    {
        Simulator simulator({"--onts", "40", "--configured", "40"});
        ASSERT_TRUE(simulator.wait_for_line(ready));
    }
    EXPECT_EQ(configured_onts(), expected);
}

TEST_F(SimulatorTest, SaysWhyItCannotStart) {
    root.write("run", "no folder");
    Simulator simulator({});
    EXPECT_EQ(simulator.wait(), 1);
    EXPECT_THAT(simulator.output(), HasSubstr(root.path().string() + "/run"));
}

} // namespace
} // namespace xpon::simulator
