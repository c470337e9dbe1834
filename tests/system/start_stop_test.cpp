#include "tests/support/eventually.hpp"
#include "tests/system/olt.hpp"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <sys/socket.h>
#include <sys/un.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <unistd.h>

namespace xpon::test {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::MatchesRegex;

const std::string rolled_back = R"({"path":"command.rollback","method":"command"})";

class EndingSignal : public testing::TestWithParam<int> {};

TEST_P(EndingSignal, StopsTheDaemonInOrderWithinASecond) {
    Olt olt;
    olt.start();
    auto client = Olt::log_in("admin"); // an open session and connection must not hold it up
    const auto begin = std::chrono::steady_clock::now();
    olt.daemon().send_signal(GetParam());
    EXPECT_EQ(olt.daemon().wait(), 0) << olt.daemon().output();
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 1500ms);
    EXPECT_THAT(olt.notifications_until_end(), ElementsAre(shutting_down));
}

INSTANTIATE_TEST_SUITE_P(, EndingSignal, testing::Values(SIGTERM, SIGINT),
                         [](const auto& test) { return test.param == SIGTERM ? "SIGTERM" : "SIGINT"; });

TEST(StartAndStop, HangupBuildsEverythingAgain) {
    Olt olt;
    olt.start();
    auto client = Olt::log_in("admin");
    ASSERT_EQ(client.session_id(), "1");

    olt.daemon().send_signal(SIGHUP);
    ASSERT_EQ(olt.next_notification(), shutting_down);
    olt.wait_until_ready();

    auto after = Olt::connect();
    after.set_session_id("1");
    EXPECT_EQ(ask_in_session(after, rolled_back),
              R"({"success":false,"session_id":"","errors":[)"
              R"({"message":{"key":"Access denied","params":{}},"path":"api_service"}]})");
    EXPECT_EQ(Olt::log_in("admin").session_id(), "1");

    olt.daemon().send_signal(SIGTERM);
    EXPECT_EQ(olt.daemon().wait(), 0) << olt.daemon().output();
}

TEST(FailedStart, WithoutLoggingFile) {
    Olt olt;
    olt.start_simulator();
    std::filesystem::remove(olt.root() / "etc/zlog_modules_config/API-SERVICE.conf");
    olt.start_daemon();
    EXPECT_THAT(olt.notifications_until_end(), ElementsAre(starting_up, "STATUS=Unable to create logging context."));
    EXPECT_EQ(olt.daemon().wait(), 1);
}

TEST(FailedStart, CustomLayerRefusesWithoutDatabase) {
    Olt olt;
    olt.start_simulator();
    std::filesystem::rename(olt.root() / "run/cfgdb", olt.root() / "run/moved_away");
    std::ofstream(olt.root() / "run/cfgdb") << "no folder";
    olt.start_daemon();
    EXPECT_THAT(olt.notifications_until_end(), ElementsAre(starting_up, "STATUS=custom_layer__init() failed: -1"));
    EXPECT_EQ(olt.daemon().wait(), 1);
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
    olt.start_daemon();
    EXPECT_THAT(olt.notifications_until_end(), ElementsAre(starting_up, ready, shutting_down,
                                                           "STATUS=Error while running api-service with "
                                                           "Error: Exception. Message: bind() failed: 98."));
    EXPECT_EQ(olt.daemon().wait(), 1);
    close(other);
}

/// Stands where a peer would listen and sees whether anybody knocks.
class Doorstep {
public:
    explicit Doorstep(const std::string& path) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::ranges::copy(path, address.sun_path);
        bind(descriptor_, reinterpret_cast<const sockaddr*>(&address), sizeof address);
        listen(descriptor_, 8);
    }
    Doorstep(const Doorstep&) = delete;
    Doorstep& operator=(const Doorstep&) = delete;
    ~Doorstep() {
        close(descriptor_);
    }
    [[nodiscard]] bool somebody_came() const {
        const int guest = accept(descriptor_, nullptr, nullptr);
        close(guest);
        return guest >= 0;
    }

private:
    int descriptor_ = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
};

TEST(FailedStart, MissingPeerIsNamedAndLaterOnesAreNotTried) {
    Olt olt;
    olt.start_simulator();
    std::filesystem::remove(olt.root() / "run/ipc/0009fffe");
    std::filesystem::remove(olt.root() / "run/ipc/000afffe");
    const Doorstep pppoe(olt.root() / "run/ipc/000afffe");
    olt.start_daemon();
    EXPECT_THAT(olt.notifications_until_end(),
                ElementsAre(starting_up, MatchesRegex("STATUS=Failed to connect to dhcp-ra: Error: CommonError\\. "
                                                      "Message: Peer 0x0009fffe: [^.]+\\.\\.")));
    EXPECT_EQ(olt.daemon().wait(), 1);
    EXPECT_FALSE(pppoe.somebody_came());
}

} // namespace
} // namespace xpon::test
