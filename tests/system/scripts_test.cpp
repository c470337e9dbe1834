#include "tests/support/eventually.hpp"
#include "tests/system/olt.hpp"
#include "xpon/core/unique_fd.hpp"

#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <ranges>
#include <regex>
#include <string>
#include <string_view>
#include <vector>

#include <sys/file.h>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace xpon::test {
namespace {

using namespace std::chrono_literals;
using testing::HasSubstr;
using testing::Not;

const std::string is_ready = "api_service is ready on 127.0.0.1:9999";

/// The part of scripts/run behind installation and build, in a folder of its own.
class RunScript : public testing::Test {
protected:
    static Process run(const std::filesystem::path& root, std::vector<std::string> options = {}) {
        options.insert(options.begin(), XPON_SOURCE_DIR "/scripts/supervise");
        return Process(options, {{"OLT_ROOT", root}, {"OLT_BINARIES", BINARY_FOLDER}});
    }

    [[nodiscard]] pid_t pid_from(const std::string& name) const {
        pid_t pid = 0;
        std::ifstream(folder_.path() / "run" / name) >> pid;
        return pid;
    }

    OltFolder folder_;
};

bool is_gone(pid_t pid) {
    return kill(pid, 0) != 0;
}

TEST_F(RunScript, LeavesNoProcessBehindHoweverItEnds) {
    struct Case {
        const char* victim; ///< a file in run/ with its pid; null: the script itself
        int signal;
        int status;
    };
    for (const auto& [victim, signal, status] :
         {Case{nullptr, SIGINT, 0}, Case{nullptr, SIGTERM, 0}, Case{nullptr, SIGKILL, 128 + SIGKILL},
          Case{"api_service.pid", SIGKILL, 128 + SIGKILL}}) {
        auto script = run(folder_.path());
        ASSERT_TRUE(script.wait_for_line(is_ready)) << script.output();
        const auto daemon = pid_from("api_service.pid");
        const auto simulator = pid_from("olt_simulator.pid");
        ASSERT_TRUE(eventually([&] { return script.output().find("\nConsole: ") != std::string::npos; }));
        const auto console = pid_from("olt_console.pid");
        ASSERT_FALSE(is_gone(daemon) || is_gone(simulator) || is_gone(console));
        EXPECT_EQ(Olt::log_in("admin").session_id(), "1");
        kill(victim == nullptr ? script.pid() : pid_from(victim), signal);
        EXPECT_EQ(script.wait(), status) << script.output();
        EXPECT_TRUE(eventually([&] { return is_gone(daemon) && is_gone(simulator) && is_gone(console); }));
    }
}

TEST_F(RunScript, ConsoleTakesAFreePortAndCanBeLeftOut) {
    {
        const Process other({OLT_CONSOLE, "--port", "8080"}, {});
        ASSERT_TRUE(eventually([] { return client::Connection::open(client::TcpEndpoint{.port = 8080}).has_value(); }));
        auto script = run(folder_.path());
        EXPECT_TRUE(eventually(
            [&] { return script.output().find("\nConsole: http://127.0.0.1:8081") != std::string::npos; }, 30s))
            << script.output();
        script.send_signal(SIGTERM);
        EXPECT_EQ(script.wait(), 0);
        EXPECT_THAT(script.output(), Not(HasSubstr("olt_console ended")));
    }
    auto script = run(folder_.path(), {"--no-console"});
    EXPECT_TRUE(script.wait_for_line("Stop with Ctrl-C.")) << script.output();
    script.send_signal(SIGTERM);
    EXPECT_EQ(script.wait(), 0);
    EXPECT_THAT(script.output(), Not(HasSubstr("Console")));
}

TEST_F(RunScript, SignalWhileStartingEndsItToo) {
    for (const auto* file : {"notify", "olt_simulator.pid", "api_service.pid"}) {
        auto script = run(folder_.path());
        ASSERT_TRUE(eventually([&] { return std::filesystem::exists(folder_.path() / "run" / file); }));
        const auto daemon = pid_from("api_service.pid");
        const auto simulator = pid_from("olt_simulator.pid");
        script.send_signal(SIGTERM);
        ASSERT_TRUE(script.wait().has_value());
        EXPECT_TRUE(daemon == 0 || is_gone(daemon));
        EXPECT_TRUE(simulator == 0 || is_gone(simulator));
    }
}

TEST_F(RunScript, SecondOneIsRefusedAndDisturbsNothing) {
    auto script = run(folder_.path());
    ASSERT_TRUE(script.wait_for_line(is_ready)) << script.output();
    auto client = Olt::log_in("admin");

    auto same_folder = run(folder_.path());
    EXPECT_EQ(same_folder.wait(), 1);
    EXPECT_THAT(same_folder.output(), HasSubstr("another scripts/run is using OLT_ROOT " + folder_.path().string()));
    const OltFolder other;
    auto other_folder = run(other.path());
    EXPECT_EQ(other_folder.wait(), 1);
    EXPECT_THAT(other_folder.output(), HasSubstr("port 9999 of this machine is taken"));

    EXPECT_EQ(ask_in_session(client, R"({"path":"command.rollback","method":"command"})"),
              R"({"success":true,"session_id":"1"})");
}

TEST_F(RunScript, ALockThatAnybodyCanTakeDoesNotStopIt) {
    const core::UniqueFd folder(open(folder_.path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    ASSERT_EQ(flock(folder.get(), LOCK_EX), 0);
    auto script = run(folder_.path());
    ASSERT_TRUE(script.wait_for_line(is_ready)) << script.output();
    for (const auto* file : {".lock", "run/olt_simulator.pid"}) {
        const auto permissions = std::filesystem::status(folder_.path() / file).permissions();
        EXPECT_EQ(permissions, std::filesystem::perms::owner_read | std::filesystem::perms::owner_write) << file;
    }
}

TEST_F(RunScript, RefusesFoldersOfOthers) {
    std::filesystem::create_directories(folder_.path() / "photos/holidays");
    auto not_ours = run(folder_.path() / "photos");
    EXPECT_EQ(not_ours.wait(), 1);
    EXPECT_THAT(not_ours.output(), HasSubstr("is no empty folder and no OLT either"));
    EXPECT_TRUE(std::filesystem::exists(folder_.path() / "photos/holidays"));

    Olt olt;
    olt.start_simulator();
    auto in_use = run(olt.root());
    EXPECT_EQ(in_use.wait(), 1);
    EXPECT_THAT(in_use.output(), HasSubstr("is in use by olt_simulator"));
    EXPECT_FALSE(is_gone(olt.simulator().pid()));
}

TEST_F(RunScript, HandsOptionsOn) {
    auto bad = run(folder_.path(), {"--onts", "4097"});
    EXPECT_EQ(bad.wait(), 2);
    EXPECT_THAT(bad.output(), HasSubstr("--onts: Value 4097 not in range 0 to 4096"));

    Process help({XPON_SOURCE_DIR "/scripts/run", "--help"}, {{"OLT_BINARIES", BINARY_FOLDER}});
    EXPECT_EQ(help.wait(), 0);
    const auto manual = read_file(XPON_SOURCE_DIR "/docs/operations.md");
    const std::regex option("\n  (--[a-z-]+)");
    const std::string& text = help.output();
    const std::sregex_iterator found(text.begin(), text.end(), option);
    EXPECT_GT(std::distance(found, {}), 8);
    for (const auto& match : std::ranges::subrange(found, std::sregex_iterator())) {
        EXPECT_THAT(manual, HasSubstr("| `" + match.str(1)));
    }
}

TEST(Programs, TellTheirVersion) {
    for (const std::string path : {API_SERVICE, OLT_CONSOLE, OLT_SIMULATOR, OLT_SIM, OLTCTL}) {
        Process version({path, "--version"}, {});
        EXPECT_EQ(version.wait(), 0);
        EXPECT_EQ(version.output(), std::filesystem::path(path).filename().string() + " " VERSION "\n");
        Process bad({path, "--bad"}, {});
        EXPECT_EQ(bad.wait(), 2);
    }
}

/// The first code block of the README's `section` in that language.
std::string readme_block(std::string_view section, const std::string& language) {
    const auto text = read_file(XPON_SOURCE_DIR "/README.md");
    const std::string fence = "```" + language + "\n";
    const auto begin = text.find(fence, text.find(section)) + fence.size();
    return text.substr(begin, text.find("```\n", begin) - begin);
}

TEST(ReadmeSessions, AnswerAsPrinted) {
    struct Session {
        const char* heading;
        const char* language;
        const char* interpreter;
    };
    for (const auto& [heading, language, interpreter] :
         {Session{"### With Python", "python", "/usr/bin/python3"}, Session{"### With nc", "sh", "/bin/sh"}}) {
        Olt olt;
        olt.start();
        const auto program = olt.root() / "tmp/session";
        std::ofstream(program) << readme_block(heading, language);
        Process session({interpreter, program}, {});
        EXPECT_EQ(session.wait(), 0);
        EXPECT_EQ(session.output(), readme_block(heading, "text"));
    }
}

} // namespace
} // namespace xpon::test
