#include "tests/support/eventually.hpp"
#include "tests/system/olt.hpp"

#include <chrono>
#include <csignal>
#include <string>

#include <gtest/gtest.h>

namespace xpon::test {
namespace {

using namespace std::chrono_literals;

const std::string hostname = R"("path":"configuration.CommonGCfg.hostname",)";
const std::string commit = R"({"path":"command.commit","method":"command"})";

std::string done_in(const client::Client& client) {
    return R"({"success":true,"session_id":")" + client.session_id() + R"("})";
}

/// Sets and commits a host name.
void rename_olt(client::Client& client, const std::string& name) {
    EXPECT_EQ(ask_in_session(client, "{" + hostname +
                                         R"("method":"set","config_type":"candidate","data":{"hostname":")" + name +
                                         R"("}})"),
              done_in(client));
    EXPECT_EQ(ask_in_session(client, commit), done_in(client));
}

std::string running_name(client::Client& client) {
    return ask_in_session(client, "{" + hostname + R"("method":"get","config_type":"running"})");
}

std::string name_answer(const client::Client& client, const std::string& name) {
    return R"({"success":true,"session_id":")" + client.session_id() + R"(","data":{"hostname":")" + name + R"("}})";
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
    rename_olt(client, "without-peers-2");
    EXPECT_EQ(running_name(client), name_answer(client, "without-peers-2"));
    EXPECT_TRUE(Olt::log_in("viewer").session_id() == "2");
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 2s);

    olt.start_simulator();
    rename_olt(client, "with-peers-again");
    EXPECT_EQ(running_name(client), name_answer(client, "with-peers-again"));
    olt.daemon().send_signal(SIGTERM);
    EXPECT_EQ(olt.daemon().wait(), 0) << olt.daemon().output();
}

TEST(Loss, KilledDaemonKeepsTheRunningConfiguration) {
    Olt olt;
    olt.start();
    {
        auto client = Olt::log_in("admin");
        rename_olt(client, "kept");
        ask_in_session(client,
                       "{" + hostname + R"("method":"set","config_type":"candidate","data":{"hostname":"pending"}})");
    }
    olt.daemon().send_signal(SIGKILL);
    ASSERT_EQ(olt.daemon().wait(), 128 + SIGKILL);
    olt.start_daemon();
    olt.wait_until_ready();
    auto client = Olt::log_in("admin");
    EXPECT_EQ(client.session_id(), "1");
    EXPECT_EQ(running_name(client), name_answer(client, "kept"));
    rename_olt(client, "goes-on");
    EXPECT_EQ(running_name(client), name_answer(client, "goes-on"));
}

} // namespace
} // namespace xpon::test
