#include "tests/support/eventually.hpp"
#include "tests/system/olt.hpp"

#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <sys/socket.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <unistd.h>

namespace xpon::test {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::MatchesRegex;

TEST(StartAndStop, SignalsStopTheDaemonInOrderWithinASecond) {
    for (const int signal : {SIGTERM, SIGINT}) {
        Olt olt;
        olt.start();
        auto client = Olt::log_in("admin"); // an open session and connection must not hold it up
        const auto begin = std::chrono::steady_clock::now();
        olt.daemon().send_signal(signal);
        EXPECT_EQ(olt.daemon().wait(), 0) << olt.daemon().output();
        EXPECT_LT(std::chrono::steady_clock::now() - begin, 1500ms);
        EXPECT_THAT(olt.notifications_until_end(), ElementsAre(shutting_down));
    }
}

TEST(StartAndStop, HangupBuildsEverythingAgain) {
    Olt olt;
    olt.start();
    Olt::log_in("admin");
    olt.daemon().send_signal(SIGHUP);
    ASSERT_EQ(olt.next_notification(), shutting_down);
    olt.wait_until_ready();

    auto after = Olt::connect();
    after.set_session_id("1");
    EXPECT_EQ(ask_in_session(after, R"({"path":"command.rollback","method":"command"})"),
              R"({"success":false,"session_id":"","errors":[)"
              R"({"message":{"key":"Access denied","params":{}},"path":"api_service"}]})");
    EXPECT_EQ(Olt::log_in("admin").session_id(), "1");
}

TEST(StartAndStop, SignalsDoNotDisturbAStart) {
    Olt olt;
    olt.start_simulator();
    olt.start_daemon();
    ASSERT_EQ(olt.next_notification(), starting_up);
    for (int number = 0; number < 3000; ++number) {
        olt.daemon().send_signal(SIGHUP);
    }
    EXPECT_TRUE(eventually([&] {
        olt.daemon().send_signal(SIGTERM);
        return olt.daemon().wait(20ms).has_value();
    }));
    EXPECT_EQ(olt.daemon().wait(), 0) << olt.daemon().output();
}

/// What the daemon says when it cannot start.
std::vector<std::string> last_words(Olt& olt) {
    olt.start_daemon();
    auto words = olt.notifications_until_end();
    EXPECT_EQ(olt.daemon().wait(), 1);
    return words;
}

TEST(FailedStart, SaysWhatIsMissing) {
    Olt olt;
    olt.start_simulator();
    std::filesystem::rename(olt.root() / "run/cfgdb", olt.root() / "run/moved_away");
    std::ofstream(olt.root() / "run/cfgdb") << "no folder";
    EXPECT_THAT(last_words(olt), ElementsAre(starting_up, "STATUS=custom_layer__init() failed: -1"));
    for (const auto* peer : {"0009fffe", "000afffe"}) { // the first of them is named
        std::filesystem::remove(olt.root() / "run/ipc" / peer);
    }
    EXPECT_THAT(last_words(olt),
                ElementsAre(starting_up, MatchesRegex("STATUS=Failed to connect to dhcp-ra: Error: CommonError\\. "
                                                      "Message: Peer 0x0009fffe: [^.]+\\.\\.")));
    std::filesystem::remove(olt.root() / "etc/zlog_modules_config/API-SERVICE.conf");
    EXPECT_THAT(last_words(olt), ElementsAre(starting_up, "STATUS=Unable to create logging context."));
}

TEST(FailedStart, PortIsTaken) {
    Olt olt;
    const int other = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(9999);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    ASSERT_EQ(bind(other, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    ASSERT_EQ(listen(other, 1), 0);

    olt.start_simulator();
    EXPECT_THAT(last_words(olt), ElementsAre(starting_up, ready, shutting_down,
                                             "STATUS=Error while running api-service with Error: Exception. Message: "
                                             "bind() failed: 98."));
    close(other);
}

} // namespace
} // namespace xpon::test
