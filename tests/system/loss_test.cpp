#include "tests/system/olt.hpp"

#include <chrono>
#include <csignal>
#include <string>

#include <gtest/gtest.h>

namespace xpon::test {
namespace {

using namespace std::chrono_literals;

/// Sets and commits a host name, and reads it back.
void rename_olt(client::Client& client, const std::string& name) {
    const std::string hostname = R"({"path":"configuration.CommonGCfg.hostname",)";
    const auto done = R"({"success":true,"session_id":")" + client.session_id();
    EXPECT_EQ(ask_in_session(client, hostname + R"("method":"set","config_type":"candidate","data":{"hostname":")" +
                                         name + R"("}})"),
              done + R"("})");
    EXPECT_EQ(ask_in_session(client, R"({"path":"command.commit","method":"command"})"), done + R"("})");
    EXPECT_EQ(ask_in_session(client, hostname + R"("method":"get","config_type":"running"})"),
              done + R"(","data":{"hostname":")" + name + R"("}})");
}

TEST(Loss, PeersMayDieAndReturn) {
    Olt olt;
    olt.start();
    auto client = Olt::log_in("admin");
    rename_olt(client, "before");

    olt.simulator().send_signal(SIGKILL);
    ASSERT_EQ(olt.simulator().wait(), 128 + SIGKILL);
    // The configuration does not depend on the peers, and nobody waits for the dead.
    const auto begin = std::chrono::steady_clock::now();
    rename_olt(client, "without-peers");
    EXPECT_EQ(Olt::log_in("viewer").session_id(), "2");
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 2s);

    olt.start_simulator();
    rename_olt(client, "with-peers-again");
    olt.daemon().send_signal(SIGTERM);
    EXPECT_EQ(olt.daemon().wait(), 0) << olt.daemon().output();
}

} // namespace
} // namespace xpon::test
