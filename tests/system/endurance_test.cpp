#include "tests/system/olt.hpp"

#include <csignal>
#include <string>

#include <gtest/gtest.h>

namespace xpon::test {
namespace {

/// Logins, logouts and refusals of every kind on one connection.
void burden(client::Client& client, int rounds) {
    for (int round = 0; round < rounds; ++round) {
        for (const auto* request : {R"({"path":"auth","method":"auth","data":{"user":"admin","password":"wrong"}})",
                                    R"({"path":"auth","method":"auth","data":{"user":"guest","password":"guest"}})",
                                    R"({"path":"auth","method":"auth","data":{"user":"admin"}})",
                                    R"({"session_id":"0","path":"unauth","method":"auth"})",
                                    R"({"path":"no.such.path","method":"get"})", "{"}) {
            ASSERT_TRUE(ask(client, request).starts_with(R"({"success":false)")) << request;
        }
        ASSERT_TRUE(logs_in(client, "operator", "operator"));
        // Refused at a route that it may use, and at one that it may not.
        for (const auto* request : {R"({"path":"configuration.ZebGCfg.pon.ont","method":"get"})",
                                    R"({"path":"command.rollback","method":"command"})"}) {
            ASSERT_TRUE(ask_in_session(client, request).starts_with(R"({"success":false)")) << request;
        }
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

} // namespace
} // namespace xpon::test
