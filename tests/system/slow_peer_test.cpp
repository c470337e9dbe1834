#include "tests/support/eventually.hpp"
#include "tests/system/olt.hpp"

#include <chrono>
#include <csignal>
#include <string>

#include <fmt/format.h>
#include <gmock/gmock.h>

namespace xpon::test {
namespace {

using namespace std::chrono_literals;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using Clock = std::chrono::steady_clock;

/// Has the PON state machine answer each call after a second.
void slow_down(const Olt& olt) {
    Process command({OLT_SIM, "fault", "peer_slow", "fsm-pon", "value", "1000"}, {{"OLT_ROOT", olt.root()}});
    ASSERT_EQ(command.wait(), 0) << command.output();
}

/// The counters of these ONTs, a call each.
std::string counters(const client::Client& client, const std::string& port, const std::string& onts) {
    return fmt::format(R"({{"session_id":"{}","path":"monitoring.interface.ont.counters.olt_side.pon",)"
                       R"("method":"get","indices":["{}","{}"]}})",
                       client.session_id(), port, onts);
}

TEST(SlowPeer, HoldsUpARequestForFiveSecondsAndNoLonger) {
    Olt olt;
    olt.start();
    auto client = Olt::log_in("admin");
    slow_down(olt);
    const auto begin = Clock::now();
    EXPECT_THAT(ask(client, counters(client, "1-16", "1-256")), HasSubstr(R"("success":false)"));
    const auto taken = Clock::now() - begin;
    EXPECT_GE(taken, 4900ms);
    EXPECT_LE(taken, 7s);
    // It is slow, not down.
    EXPECT_THAT(ask(client, counters(client, "1", "1-2")), HasSubstr(R"("success":true)"));
}

TEST(SlowPeer, DoesNotHoldUpAStop) {
    Olt olt;
    olt.start();
    auto client = Olt::log_in("admin");
    slow_down(olt);
    ASSERT_TRUE(client.connection().send_frame(counters(client, "1-16", "1-256"), Clock::now() + 1s));
    ASSERT_FALSE(client.connection().receive_frame(Clock::now() + 300ms)) << "the request is to be at work";
    const auto begin = Clock::now();
    olt.daemon().send_signal(SIGTERM);
    const auto answer = client.connection().receive_frame(begin + 30s);
    EXPECT_THAT(answer ? answer.value() : "", HasSubstr("could not be processed"));
    EXPECT_EQ(olt.daemon().wait(), 0) << olt.daemon().output();
    EXPECT_LT(Clock::now() - begin, 2500ms) << "one call at hand is waited for";
}

TEST(StoppedPeer, DoesNotDoLaterWhatItsAskerGaveUp) {
    Olt olt;
    olt.start();
    auto client = Olt::log_in("admin");
    const auto reconfigure = [&](int port) {
        return ask_in_session(client, fmt::format(R"({{"path":"command.reconfigure.pon_port","method":"command",)"
                                                  R"("indices":["{}"]}})",
                                                  port));
    };
    olt.simulator().send_signal(SIGSTOP);
    EXPECT_THAT(reconfigure(1), HasSubstr(R"("success":false)"));
    olt.simulator().send_signal(SIGCONT);
    EXPECT_TRUE(eventually([&] { return reconfigure(2).find(R"("success":true)") != std::string::npos; }));
    EXPECT_THAT(read_file(olt.root() / "var/log/events.log"),
                AllOf(HasSubstr("PON ports by 0x001bffff: 2"), Not(HasSubstr("PON ports by 0x001bffff: 1"))));
}

} // namespace
} // namespace xpon::test
