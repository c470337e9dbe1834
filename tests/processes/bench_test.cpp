#include "tests/processes/live_olt.hpp"

#include <chrono>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include <gmock/gmock.h>

namespace xpon::simulator {
namespace {

using testing::HasSubstr;

/// ONTs 1/1 to 1/3 are in service, 1/4 is not configured.
class BenchTest : public LiveOltTest {};

TEST_F(BenchTest, OntsComeGoAndChangePlaces) {
    must({"power", "ont", "1/1", "off"});
    EXPECT_EQ(ont_states().count(served), 0U);
    EXPECT_EQ(ont_states().size(), 45U);
    must({"power", "all", "off"});
    EXPECT_TRUE(ont_states().empty());
    must({"power", "pon", "1", "on"});
    must({"step", "300"});
    EXPECT_EQ(ont_states().size(), 3U);
    must({"at", "10", "add", "1/9", "model", "SIM-ONT-1"});
    must({"swap", "1/1", "serial", "ACME0000BEEF"});
    must({"move", "1/2", "3"});
    must({"step", "300"});
    EXPECT_EQ(ont_states().size(), 1U);
    EXPECT_EQ(unactivated("1"), 3U);
    EXPECT_EQ(unactivated("3"), 1U);
    EXPECT_THAT(command({"state", "ont", "1/1"}), HasSubstr(R"("serial":"ACME0000BEEF")"));
    EXPECT_THAT(command({"state", "pon", "3"}), HasSubstr(R"("ont":"1/2","serial":"SIMUA0010002")"));
    must({"move", "1/2", "1"});
    must({"step", "300"});
    EXPECT_THAT(command({"state", "subscribers"}), HasSubstr(R"("service":"1/2/4")"));
}

TEST_F(BenchTest, EachChangeOfStateIsOneLine) {
    must({"fault", "ont_los", "1/1", "for", "30"});
    must({"step", "400"});
    const auto events = root.read("var/log/events.log");
    const auto own = [](std::string_view log, std::string_view what) {
        std::vector<std::string> texts;
        std::istringstream lines{std::string(log)};
        for (std::string line; std::getline(lines, line);) {
            if (const auto at = line.find(what); at != std::string::npos) {
                texts.push_back(line.substr(at + what.size()));
            }
        }
        return texts;
    };
    // The fault's end lies within the step, and so do all that follow.
    EXPECT_THAT(own(events, " ont 1/1 "),
                testing::ElementsAre("POPUP SIMUA0010001", "GONE SIMUA0010001", "INITIAL SIMUA0010001",
                                     "STANDBY SIMUA0010001", "SERIAL_NUMBER SIMUA0010001", "RANGING SIMUA0010001",
                                     "AUTHENTICATION SIMUA0010001", "MIB_UPLOAD SIMUA0010001",
                                     "CONFIGURING SIMUA0010001", "OPERATIONAL SIMUA0010001"));
    EXPECT_THAT(own(events, " 263520.000 ont 1/1 "), testing::ElementsAre("POPUP SIMUA0010001"));
    EXPECT_THAT(own(events, " 263520.100 ont 1/1 "), testing::ElementsAre("GONE SIMUA0010001"));
    EXPECT_THAT(own(events, " 263550.000 ont 1/1 "), testing::ElementsAre("INITIAL SIMUA0010001"));
    EXPECT_THAT(own(events, " alarm 1/1 "), testing::ElementsAre("LOSi raised", "LOSi cleared"));
    EXPECT_THAT(own(events, " session 1/1/1 "), testing::ElementsAre(HasSubstr("closed"), HasSubstr("opened")));
    EXPECT_THAT(root.read("var/log/fsm-pon.log"), HasSubstr("1/1: OPERATIONAL SIMUA0010001\n"));
    EXPECT_THAT(root.read("var/log/pppoe.log"), HasSubstr("1/1/1: PPPoE session "));
}

TEST_F(BenchTest, SubscribersDoWhatTheyAreTold) {
    must({"at", "10", "session", "1/1/1", "drop"});
    must({"step", "60"});
    must({"lease", "1/1/3", "drop"});
    must({"step", "60"});
    must({"lease", "1/1/3", "renew"});
    unsigned left = 0; // of whatever is watched
    for (unsigned number = 1; number <= 64; ++number) {
        const auto answer = command({"group", "1/1/2", "leave", "239.0.0." + std::to_string(number)});
        left += answer.find("\"ok\":true") != std::string::npos ? 1 : 0;
    }
    EXPECT_TRUE(left == 1 || left == 2) << left;
    must({"group", "1/1/2", "join", "239.0.0.63"});
    must({"traffic", "1/1/1", "start", "speed_test"});
    const auto state = command({"state", "ont", "1/1"});
    EXPECT_THAT(state, HasSubstr(R"("groups":"239.0.0.63")"));
    EXPECT_THAT(state, HasSubstr(R"("traffic":"speed_test")"));
    must({"traffic", "1/1/1", "stop"});
    must({"group", "1/1/2", "release"});
    const auto events = root.read("var/log/events.log");
    for (const auto* line :
         {" 263530.000 session 1/1/1 PPPoE session dropped by a tester\n", " session 1/1/1 PPPoE session 0x",
          " 263580.000 session 1/1/3 1 leases dropped by a tester\n", " 263640.000 session 1/1/3 1 leases renewed",
          " group 1/1/2 joined 239.0.0.63 in VLAN ", " session 1/1/1 traffic speed_test by a tester"}) {
        EXPECT_THAT(events, HasSubstr(line));
    }
}

TEST_F(BenchTest, AttenuationDegradesAndFailsTheSignalAndLosesIt) {
    const std::pair<const char*, const char*> cases[] = {
        {"5", "SDi raised"}, {"6", "SFi raised"}, {"10", "LOSi raised"}};
    for (const auto& [attenuation, alarm] : cases) {
        must({"fault", "ont_attenuation", "1/1", "value", attenuation});
        EXPECT_THAT(root.read("var/log/events.log"), HasSubstr(alarm)) << attenuation;
    }
}

TEST_F(BenchTest, WatchersAreToldWhatTheyAskFor) {
    test::Process watcher({OLT_SIM, "watch", "ont,port", "--of", "pon/1", "--count", "2"}, {});
    // A watcher is served in the order of its connection; what is told before it asks, it does not hear.
    while (watcher.output().find("GONE") == std::string::npos && !watcher.wait(std::chrono::milliseconds(1))) {
        must({"fault", "ont_dying_gasp", "2/1"});
        must({"fault", "ont_dying_gasp", "1/1"});
        must({"clear", "all"});
    }
    EXPECT_EQ(watcher.wait(), 0);
    EXPECT_THAT(watcher.output(), testing::Not(HasSubstr(" 2/1 ")));
    EXPECT_THAT(watcher.output(), HasSubstr(" ont 1/1 GONE SIMUA0010001"));
    EXPECT_THAT(command({"fault", "ont_los", "1/1"}), HasSubstr("ok"));
    EXPECT_THAT(control->ask(R"({"watch": "onts"})"), HasSubstr("there are no events 'onts'"));
}

TEST_F(BenchTest, RefusesWhatIsNotThere) {
    const std::pair<std::vector<std::string>, const char*> cases[] = {
        {{"fault", "ont_los", "1/9"}, "there is no ONT 1/9"},
        {{"fault", "pppoe_blocked", "2/256/1"}, "there is no ONT 2/256"},
        {{"fault", "module_hot", "front/8"}, "there is no module in front/8"},
        {{"power", "ont", "1/9", "off"}, "there is no ONT 1/9"},
        {{"power", "all", "of"}, "power must be on or off"},
        {{"add", "1/2"}, "there is an ONT 1/2 already"},
        {{"add", "1/9", "model", "none"}, "this plant has no model 'none'"},
        {{"swap", "1/1", "serial", "SIMUA0010002"}, "ONT 1/2 has this serial number already"},
        {{"move", "1/1", "1"}, "ONT 1/1 is on PON port 1 already"},
        {{"state", "ont", "1/9"}, "there is no ONT 1/9"},
        {{"lease", "1/1", "drop"}, "'1/1' is no service"},
        {{"lease", "1/9/1", "drop"}, "there is no ONT 1/9"},
        {{"lease", "1/4/1", "drop"}, "1/4/1 is not in service"},
        {{"session", "1/1/3", "drop"}, "1/1/3 has no session"},
        {{"group", "1/1/2", "join", "239.0.0.65"}, "address must be 239.0.0.1 to 239.0.0.64"},
        {{"group", "1/1/1", "join", "239.0.0.1"}, "nobody watches television there"},
        {{"traffic", "1/1/1", "start", "usual"}, "traffic starts with the profile idle or evening or speed_test"},
        {{"traffic", "1/1/1", "stop"}, "1/1/1 has its usual traffic"},
    };
    for (const auto& [words, complaint] : cases) {
        EXPECT_THAT(command(words), HasSubstr(complaint));
    }
}

} // namespace
} // namespace xpon::simulator
