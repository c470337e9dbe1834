#include "tests/system/olt.hpp"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace xpon::test {
namespace {

/// Logins, logouts and refusals of every kind on one connection.
void burden(client::Client& client, int rounds) {
    const std::vector<std::string> refused{
        R"({"path":"auth","method":"auth","data":{"user":"admin","password":"wrong"}})",
        R"({"path":"auth","method":"auth","data":{"user":"guest","password":"guest"}})",
        R"({"path":"auth","method":"auth","data":{"user":"admin"}})",
        R"({"path":"command.commit","method":"command"})",
        R"({"session_id":"0","path":"unauth","method":"auth"})",
        R"({"path":"no.such.path","method":"get"})",
        "{",
    };
    for (int round = 0; round < rounds; ++round) {
        for (const auto& request : refused) {
            ASSERT_EQ(ask(client, request).substr(0, 16), R"({"success":false)") << request;
        }
        ASSERT_TRUE(logs_in(client, "operator", "operator"));
        // Refused at a route that it may use, and at one that it may not.
        ASSERT_EQ(ask_in_session(client, R"({"path":"configuration.ZebGCfg.pon.ont","method":"get"})").substr(0, 16),
                  R"({"success":false)");
        ASSERT_EQ(ask_in_session(client, R"({"path":"command.rollback","method":"command"})").substr(0, 16),
                  R"({"success":false)");
        ASSERT_TRUE(client.log_out());
    }
}

TEST(Endurance, ThousandsOfLoginsAndRefusalsLeaveNothingBehind) {
    Olt olt;
    olt.start();
    auto client = Olt::connect();
    burden(client, 100); // pools and caches fill
    const auto descriptors = olt.daemon().descriptors();
    [[maybe_unused]] const auto resident = olt.daemon().resident_kib();

    burden(client, WITH_SANITIZERS ? 100 : 1000);

    EXPECT_EQ(olt.daemon().descriptors(), descriptors);
    if (!WITH_SANITIZERS) { // whose allocator keeps freed memory for a while
        EXPECT_LT(olt.daemon().resident_kib() - resident, 512);
    }
    olt.daemon().send_signal(SIGTERM);
    EXPECT_EQ(olt.daemon().wait(), 0) << olt.daemon().output();
}

TEST(Endurance, OpenSessionsCostBytesOnly) {
    Olt olt;
    olt.start();
    auto client = Olt::connect();
    ASSERT_TRUE(logs_in(client, "viewer", "viewer"));
    const auto descriptors = olt.daemon().descriptors();
    const auto resident = olt.daemon().resident_kib();
    constexpr int sessions = WITH_SANITIZERS ? 200 : 2000;
    for (int i = 0; i < sessions; ++i) {
        ASSERT_TRUE(logs_in(client, "viewer", "viewer"));
    }
    EXPECT_EQ(client.session_id(), std::to_string(sessions + 1));
    EXPECT_EQ(olt.daemon().descriptors(), descriptors);
    if (!WITH_SANITIZERS) {
        EXPECT_LT((olt.daemon().resident_kib() - resident) * 1024 / sessions, 16 * 1024);
    }
    // Neither the first nor the last has lost anything.
    for (const auto* id : {"1", "200"}) {
        client.set_session_id(id);
        EXPECT_EQ(ask_in_session(client, R"({"path":"configuration.CommonGCfg.hostname","method":"get",)"
                                         R"("config_type":"candidate"})"),
                  std::string(R"({"success":true,"session_id":")") + id + R"(","data":{"hostname":"olt"}})");
    }
    olt.daemon().send_signal(SIGTERM);
    EXPECT_EQ(olt.daemon().wait(), 0) << olt.daemon().output();
}

} // namespace
} // namespace xpon::test
