#include "tests/system/olt.hpp"

#include <csignal>
#include <filesystem>
#include <string>
#include <utility>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace xpon::test {
namespace {

const std::string ont = "configuration.ZebGCfg.pon.ont";
const std::string service = "configuration.ZebGCfg.pon.ont.service";

std::string request(client::Client& client, const std::string& path, const std::string& method,
                    const std::string& more = "") {
    return ask_in_session(client, fmt::format(R"({{"path":"{}","method":"{}"{}}})", path, method, more));
}

void succeed(client::Client& client, const std::string& path, const std::string& method, const std::string& more = "") {
    EXPECT_EQ(request(client, path, method, more), R"({"success":true,"session_id":"1"})");
}

/// The running ONTs and their services.
std::pair<std::string, std::string> read_all(client::Client& client) {
    return {request(client, ont, "get", R"(,"indices":["1-16","1-256"],"config_type":"running")"),
            request(client, service, "get", R"(,"indices":["1-16","1-256","1-8"],"config_type":"running")")};
}

TEST(WholeConfiguration, OfAFullOltIsReadBackIdenticalAfterARestart) {
    Olt olt;
    olt.start({"--plant", "empty"});
    auto client = Olt::log_in("admin");
    succeed(client, ont, "set",
            R"(,"indices":["1-16","1-256"],"config_type":"candidate",)"
            R"("data":{"description":"Every home","ont_template":1})");
    succeed(client, service, "set",
            R"(,"indices":["1-16","1-256","1"],"config_type":"candidate","data":{"downstream_kbps":300000})");
    for (int number = 1; number <= 64; ++number) {
        succeed(client, ont, "set",
                fmt::format(R"(,"indices":["{0}","{1}"],"config_type":"candidate",)"
                            R"("data":{{"serial":[83,73,77,85,160,{0},0,{1},0,0],"ont_template":1}})",
                            number % 16 + 1, number));
    }
    succeed(client, "command.commit", "command");
    succeed(client, "command.save", "command");
    const auto before = read_all(client);
    EXPECT_GT(before.first.size(), 4096U * 300);
    EXPECT_GT(before.second.size(), 32768U * 100);

    for (auto* process : {&olt.daemon(), &olt.simulator()}) {
        process->send_signal(SIGTERM);
        ASSERT_EQ(process->wait(), 0) << process->output();
    }
    EXPECT_EQ(olt.next_notification(), shutting_down);
    std::filesystem::remove_all(olt.root() / "run/cfgdb"); // volatile on a device
    olt.start({"--plant", "empty"});
    auto after = Olt::log_in("admin");
    EXPECT_TRUE(read_all(after) == before);
}

TEST(WholeConfiguration, RefusedCommitNamesThePathAndChangesNothing) {
    Olt olt;
    olt.start({"--plant", "empty"});
    auto client = Olt::log_in("admin");
    succeed(client, ont, "set",
            R"(,"indices":["1","1-2"],"config_type":"candidate","data":{"serial":[83,73,77,85,0,0,0,1,0,0]})");
    EXPECT_EQ(request(client, "command.commit", "command"),
              R"({"success":true,"session_id":"1","errors":[{"message":{"key":"Commit failed: {p0}","params":{)"
              R"("p0":"ONT serial is already used by ONT 1/1"}},"path":"configuration.ZebGCfg.pon.ont.1.2"}]})");
    EXPECT_THAT(request(client, ont, "get", R"(,"indices":["1","1"],"config_type":"running")"),
                testing::HasSubstr("[0,0,0"));
}

} // namespace
} // namespace xpon::test
