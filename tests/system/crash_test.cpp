#include "tests/system/olt.hpp"

#include <csignal>
#include <filesystem>
#include <random>
#include <set>
#include <string>
#include <thread>

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <poll.h>

namespace xpon::test {
namespace {

constexpr int rounds = WITH_SANITIZERS ? 20 : 100;

/// Sets 128 ONTs, commits and saves. False when an answer stayed away.
bool change(client::Client& client, int number) {
    const auto session = fmt::format(R"("session_id":"{}")", client.session_id());
    const auto set = fmt::format(R"({{{},"path":"configuration.ZebGCfg.pon.ont","method":"set",)"
                                 R"("indices":["1-2","1-64"],"config_type":"candidate",)"
                                 R"("data":{{"description":"change {}"}}}})",
                                 session, number);
    return client.exchange(set) &&
           client.exchange(fmt::format(R"({{{},"path":"command.commit","method":"command"}})", session)) &&
           client.exchange(fmt::format(R"({{{},"path":"command.save","method":"command"}})", session));
}

/// The different descriptions that the 128 ONTs have.
std::set<std::string> descriptions(client::Client& client, const std::string& config_type) {
    const auto answer = ask_in_session(client, R"({"path":"configuration.ZebGCfg.pon.ont","method":"get",)"
                                               R"("indices":["1-2","1-64"],"config_type":")" +
                                                   config_type + R"("})");
    const std::string key = R"("description":")";
    std::set<std::string> found;
    std::size_t count = 0;
    for (auto at = answer.find(key); at != std::string::npos; at = answer.find(key, at), ++count) {
        at += key.size();
        found.insert(answer.substr(at, answer.find('"', at) - at));
    }
    EXPECT_EQ(count, 128U) << answer.substr(0, 500);
    return found;
}

TEST(Crash, AtAnyMomentLeavesWholeStores) {
    Olt olt;
    olt.start_simulator({"--plant", "empty"});
    std::mt19937 random(1);
    for (int round = 0; round < rounds; ++round) {
        olt.start_daemon();
        olt.wait_until_ready();
        auto client = Olt::log_in("admin");
        if (round == 0) { // a slow machine may never come to a save before it is killed
            ASSERT_TRUE(change(client, 0));
        }
        EXPECT_EQ(descriptions(client, "running").size(), 1U) << "a commit moves all records or none";
        EXPECT_LE(descriptions(client, "candidate").size(), 2U) << "each record is the old or the new one";
        // Else what two kills left half-way would add up.
        ask_in_session(client, R"({"path":"command.rollback","method":"command"})");
        {
            const std::jthread killer([&, delay = static_cast<long>(random() % 20'000'000)] {
                const timespec moment{.tv_sec = 0, .tv_nsec = delay};
                ::ppoll(nullptr, 0, &moment, nullptr); // any moment will do
                olt.daemon().send_signal(SIGKILL);
            });
            for (int number = round * 1000; change(client, number); ++number) {
            }
        }
        ASSERT_EQ(olt.daemon().wait(), 128 + SIGKILL);
    }

    // What was saved last is whole, whenever the writing of the file after it was cut off.
    olt.simulator().send_signal(SIGTERM);
    ASSERT_EQ(olt.simulator().wait(), 0);
    std::filesystem::remove_all(olt.root() / "run/cfgdb");
    olt.start();
    auto client = Olt::log_in("admin");
    const auto saved = descriptions(client, "running");
    ASSERT_EQ(saved.size(), 1U);
    EXPECT_TRUE(saved.begin()->starts_with("change ")) << *saved.begin();
}

} // namespace
} // namespace xpon::test
