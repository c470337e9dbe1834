#include "tests/system/oltctl_user.hpp"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace xpon::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

/// What people do besides reading and committing: editing, watching, installing, completing.
class OltctlTools : public OltctlUser {
protected:
    /// An editor that runs these lines of shell on the file, "$1".
    void use_editor(const std::string& lines) {
        const auto path = runtime_folder() / "editor";
        std::ofstream(path) << "#!/bin/sh\n" << lines << "\n";
        std::filesystem::permissions(path, std::filesystem::perms(0700));
    }
    std::string edit(const std::string& words) {
        return run("EDITOR=./editor XDG_STATE_HOME=\"$XDG_RUNTIME_DIR/state\" oltctl edit " + words + " 2>&1");
    }
    [[nodiscard]] std::size_t kept_texts() const {
        const auto folder = runtime_folder() / "state/oltctl";
        return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(folder), {}));
    }
};

TEST_F(OltctlTools, EditorOpensAgainWithTheErrorBesideTheField) {
    olt_.start({"--plant", "empty"});
    log_in("admin");
    constexpr auto ntp = "configuration.CommonGCfg.system.ntp";
    // The first time a value is out of range, the second time it is put right.
    use_editor(R"(cp "$1" seen; if grep -q '^#! min_poll' "$1"; then sed -i 's/^min_poll: .*/min_poll: 5/' "$1";
        else sed -i 's/^min_poll: .*/min_poll: 99/' "$1"; fi)");
    EXPECT_THAT(edit(ntp), HasSubstr("1 records changed"));
    EXPECT_EQ(status_, 0);
    EXPECT_THAT(read_file(runtime_folder() / "seen"),
                HasSubstr("#! min_poll: Value 99 is out of range 4 to 17\nmin_poll: 99\n"));
    EXPECT_THAT(run("oltctl diff"), HasSubstr("min_poll: 6 -> 5"));
    EXPECT_EQ(kept_texts(), 0U);
}

TEST_F(OltctlTools, NothingThatWasWrittenIsLost) {
    olt_.start({"--plant", "empty"});
    log_in("admin");
    constexpr auto onts = "configuration.ZebGCfg.pon.ont 1 1-2";
    use_editor("exit 0");
    EXPECT_EQ(edit(onts), "Nothing differs.\n");
    use_editor(R"(sed -i 's/description: ""/description: "House 7"/' "$1"; exit 3)");
    const auto died = edit(onts);
    EXPECT_EQ(status_, 1);
    ASSERT_THAT(died, HasSubstr("ended with status 3"));
    const auto command = died.substr(died.find("oltctl edit ") + 12);
    use_editor("true");
    EXPECT_THAT(edit(command.substr(0, command.find('\n'))), HasSubstr("2 records changed"));
    EXPECT_THAT(run("oltctl diff"), AllOf(HasSubstr("ont 1/1"), HasSubstr("ont 1/2"), HasSubstr("House 7")));
    // A text that is wrong and stays so is kept, too.
    use_editor(R"(grep -q bogus "$1" || echo 'bogus: [' >> "$1")");
    EXPECT_THAT(edit(onts), AllOf(HasSubstr("left it as it was"), HasSubstr("--file")));
    EXPECT_EQ(kept_texts(), 1U);
}

TEST_F(OltctlTools, WatchPrintsChangesIntoAPipe) {
    olt_.start({"--onts", "4", "--configured", "4"});
    log_in("admin");
    EXPECT_THAT(run("oltctl watch configuration.CommonGCfg.hostname --count 1"), "hostname: olt\n");
    const auto lines =
        run("oltctl watch --json monitoring.interface.ont.counters.olt_side.pon 1 1 --count 2 --interval 0.2");
    EXPECT_EQ(std::ranges::count(lines, '\n'), 2);
    EXPECT_THAT(run("oltctl top 2>&1"), HasSubstr("no terminal"));
    EXPECT_EQ(status_, 2);
    EXPECT_THAT(run("oltctl watch monitoring.nothing 2>&1"), HasSubstr("was refused"));
    EXPECT_EQ(status_, 1);
}

TEST_F(OltctlTools, OneScreenTellsAllOfOneOnt) {
    olt_.start({"--onts", "4", "--configured", "2"});
    log_in("admin");
    const auto screen = run("oltctl ont 1/1");
    EXPECT_THAT(screen, AllOf(HasSubstr("OPERATIONAL"), HasSubstr("Rx Bytes"), HasSubstr("fec_performance_monitoring"),
                              HasSubstr("pppoe_sessions"), Not(HasSubstr("UNACTIVATED"))));
}

TEST_F(OltctlTools, FirmwareIsInstalledFromAnyFolder) {
    olt_.start({"--plant", "empty"});
    log_in("admin");
    run("olt_sim make-image --version 9.8.7 new.img");
    EXPECT_THAT(run("oltctl firmware install new.img"), HasSubstr("Firmware 9.8.7 is installed"));
    run("oltctl firmware select alternate");
    EXPECT_THAT(run("oltctl firmware --json"), HasSubstr("\"next_boot_fw\":\t\"9.8.7\""));
    EXPECT_THAT(run("oltctl firmware install missing.img 2>&1"), HasSubstr("There is no file"));
    EXPECT_EQ(status_, 2);
    EXPECT_THAT(run("oltctl reconfigure port 1-2 2>&1"), HasSubstr("say --yes"));
    for (const auto* command :
         {"reconfigure port 1-2", "reconfigure olt", "ont reset 1/1", "ont reconfigure 1-2/1-8"}) {
        run(std::string("oltctl --yes ") + command);
        EXPECT_EQ(status_, 0) << command;
    }
}

TEST_F(OltctlTools, CompletesWhatItKnowsAndRunsLines) {
    olt_.start({"--plant", "empty"});
    log_in("admin");
    struct Case {
        const char* line;
        const char* candidates; ///< the beginning of them
    };
    for (const auto& [line, candidates] :
         {Case{"fi", "firmware\n"}, Case{"ont re", "reboot\nreconfigure\nreset\n"},
          Case{"firmware select ", "alternate\ncurrent\n"}, Case{"onts --sort r", "rssi\n"},
          Case{"get monitoring.ip.d", "monitoring.ip.dhcp.sessions\n"},
          Case{"set configuration.CommonGCfg.system.ntp min", "min_poll=\n"},
          Case{"set --patch configuration.CommonGCfg.system.ntp interface=o", "interface=oob\n"},
          Case{"delete ", "configuration.ZebGCfg.pon.ont\n"}, Case{"import ", ""}, Case{"comp", ""}}) {
        EXPECT_EQ(run(fmt::format("oltctl complete -- '{}'", line)), candidates) << line;
    }
    EXPECT_EQ(run("printf 'get configuration.CommonGCfg.hostname\\n\\n# note\\nbogus\\n' | oltctl shell 2>/dev/null"),
              "hostname  olt\n");
    EXPECT_EQ(status_, 2) << "that of the last line";
}

TEST_F(OltctlTools, CommitNamesOtherAuthors) {
    olt_.start({"--plant", "empty"});
    log_in("operator");
    run("oltctl set configuration.ZebGCfg.pon.ont 1 1-2 description=x");
    log_in("admin");
    run("oltctl set configuration.CommonGCfg.hostname hostname=mine");
    EXPECT_THAT(run("oltctl commit 2>&1"), AllOf(HasSubstr("Also edited by session 1 (operator)"),
                                                 HasSubstr("configuration.ZebGCfg.pon.ont [1 1-2]")));
    run("oltctl set configuration.CommonGCfg.hostname hostname=again");
    EXPECT_THAT(run("oltctl commit 2>&1"), Not(HasSubstr("Also edited")));
}

} // namespace
} // namespace xpon::test
