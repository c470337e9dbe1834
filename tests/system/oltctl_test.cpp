#include "tests/system/oltctl_user.hpp"

#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace xpon::test {
namespace {

using testing::HasSubstr;

/// A command line of the page, and what it prints there.
struct Step {
    std::string command;
    std::string output;
};

/// The steps of all blocks of the page that show a terminal.
std::vector<Step> steps_of(const std::filesystem::path& page) {
    std::vector<Step> steps;
    std::istringstream lines(read_file(page));
    bool is_terminal = false;
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with("```")) {
            is_terminal = line == "```console";
        } else if (is_terminal && line.starts_with("$ ")) {
            steps.push_back({line.substr(2), ""});
        } else if (is_terminal) {
            steps.back().output += line + "\n";
        }
    }
    return steps;
}

/// Times, light, counters and MAC tables vary; what the page shows of them is an example.
std::string without_values(const std::string& text) {
    static const std::regex number(R"( *-?\b[0-9][0-9.:]*\b)");
    return std::regex_replace(text, number, " #");
}

TEST_F(OltctlUser, FollowsThePageFromAnEmptyOltToASubscriberOnline) {
    olt_.start({"--onts", "1", "--configured", "0"});
    const auto steps = steps_of(XPON_SOURCE_DIR "/docs/oltctl.md");
    ASSERT_GT(steps.size(), 10U);
    for (const auto& [command, output] : steps) {
        EXPECT_EQ(without_values(run(command)), without_values(output)) << command;
        EXPECT_EQ(status_, 0) << command;
    }
}

TEST_F(OltctlUser, KeepsTheSessionToItselfWhereNoFolderForThatIsNamed) {
    olt_.start();
    const std::string oltctl = "env -u XDG_RUNTIME_DIR TMPDIR=$PWD oltctl ";
    run("echo viewer | " + oltctl + "login viewer --password-fd 0");
    EXPECT_EQ(status_, 0);
    run(oltctl + "system");
    EXPECT_EQ(status_, 0);
    EXPECT_THAT(run("chmod 755 oltctl-*; " + oltctl + "system"), HasSubstr("is not yours alone"));
    EXPECT_EQ(status_, 3);
}

TEST_F(OltctlUser, ExportDefaultImportLeavesNoDifference) {
    olt_.start({"--onts", "64", "--configured", "48"});
    log_in("admin");
    run("oltctl set configuration.CommonGCfg.hostname hostname=somewhere");
    run("oltctl set configuration.ZebGCfg.pon.ont.service 1-2 1-8 3 subscriber_id=x downstream_kbps=1000");
    run("oltctl commit");
    run("oltctl export > before.json && oltctl default");
    EXPECT_NE(run("oltctl diff"), "");
    EXPECT_THAT(run("oltctl import before.json"), HasSubstr("records changed"));
    EXPECT_EQ(run("oltctl diff"), "");
    EXPECT_EQ(run("oltctl diff --json"), "[]\n");
    EXPECT_EQ(run("oltctl import before.json"), "Nothing differs.\n");
    EXPECT_EQ(run("oltctl export --candidate | cmp - before.json"), "");
    EXPECT_EQ(status_, 0);
}

TEST_F(OltctlUser, ProvisionsAListWholeOrNotAtAll) {
    olt_.start({"--plant", "empty"});
    log_in("admin");
    const auto write = [&](const std::string& lines) {
        std::ofstream(runtime_folder() / "list.csv") << "serial,port,description,template\r\n" << lines;
    };
    std::string lines;
    for (int number = 0; number < 300; ++number) {
        lines += fmt::format("SIMU{:08X},{},\"House, {}\",bridged\r\n", number + 1, number / 256 + 3, number);
    }
    write(lines + "SIMU00000007,1,twice,bridged\nSIMU0000F000,1,,nothing\n");
    EXPECT_THAT(run("oltctl provision list list.csv 2>&1"),
                testing::AllOf(HasSubstr("0 of 302 ONTs"), HasSubstr("SIMU00000007 is configured already, as ONT 3/7"),
                               HasSubstr("There is no ONT template 'nothing'")));
    EXPECT_EQ(status_, 1);
    EXPECT_EQ(run("oltctl diff"), "");
    write(lines);
    EXPECT_THAT(run("oltctl provision list list.csv"), HasSubstr("300 of 300 ONTs"));
    EXPECT_EQ(status_, 0);
    EXPECT_THAT(run("oltctl get --candidate configuration.ZebGCfg.pon.ont 4 44"), HasSubstr("House, 299\n"));
    EXPECT_EQ(run("oltctl commit >commit.txt 2>&1; oltctl diff"), "");
    write("SIMU0000F000,x,,bridged\n");
    EXPECT_THAT(run("oltctl provision list list.csv 2>&1"), HasSubstr("Line 2 of the list: 'x' is no number"));
    EXPECT_EQ(status_, 2);
}

TEST_F(OltctlUser, LearnsFromTheStatusWhatWentWrong) {
    olt_.start({"--plant", "empty"});
    struct Case {
        const char* command;
        int status;
        const char* text;
    };
    const auto expect = [&](std::vector<Case> cases) {
        for (const auto& [command, status, text] : cases) {
            EXPECT_THAT(run(fmt::format("oltctl {} 2>&1", command)), HasSubstr(text)) << command;
            EXPECT_EQ(status_, status) << command;
        }
    };
    std::ofstream(runtime_folder() / "bad.json") << "{\n\"configuration.CommonGCfg.hostname\": }\n";
    std::ofstream(runtime_folder() / "wrong.json") << R"({"configuration.CommonGCfg.hostname": {"hostname": "a b"}})";
    expect({{"whoami", 3, "Log in: oltctl login USER"}, {"login admin", 2, "--password-file"}});
    log_in("viewer");
    expect({{"set configuration.CommonGCfg.hostname hostname=x", 1, "Your privilege is too low"}});
    log_in("admin");
    expect({{"bogus", 2, "There is no command 'bogus'"},
            {"ont 3", 2, "such as 3/17"},
            {"reboot", 2, "say --yes"},
            {"import bad.json", 2, "line 2 cannot be read"},
            {"import wrong.json", 1, "hostname: Character not allowed"},
            {"set configuration.CommonGCfg.system.ntp min_poll=99", 1, "min_poll: Value 99 is out of range 4 to 17"},
            {"set configuration.ZebGCfg.pon.ont 1 1-2 serial=SIMUA0030011", 0, ""},
            {"commit", 1, "ONT serial is already used by ONT 1/1"},
            {"rollback", 0, ""},
            {"diff", 0, ""},
            {"--port-of-service 1 system", 3, "not logged in"},
            {"--port-of-service 1 login admin --password-file password", 4, "Is api_service running"}});
    // A restart ends all sessions.
    restart_daemon();
    expect({{"system", 3, "has expired. Log in: oltctl login USER"}});
}

} // namespace
} // namespace xpon::test
