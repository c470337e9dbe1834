#include "tests/system/olt.hpp"

#include <csignal>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace xpon::test {
namespace {

using testing::HasSubstr;

class WholeConfiguration : public testing::Test {
protected:
    WholeConfiguration() {
        olt.start({"--plant", "empty"});
        client.emplace(Olt::log_in("admin"));
    }

    void restart_everything() {
        client.reset();
        olt.daemon().send_signal(SIGTERM);
        EXPECT_THAT(olt.notifications_until_end(), testing::ElementsAre(shutting_down));
        olt.simulator().send_signal(SIGTERM);
        ASSERT_EQ(olt.simulator().wait(), 0) << olt.simulator().output();
        std::filesystem::remove_all(olt.root() / "run/cfgdb"); // volatile on a device
        olt.start({"--plant", "empty"});
        client.emplace(Olt::log_in("admin"));
    }

    std::string request(const std::string& path, const std::string& method, const std::string& more = "") {
        return ask_in_session(*client, fmt::format(R"({{"path":"{}","method":"{}"{}}})", path, method, more));
    }
    void succeed(const std::string& path, const std::string& method, const std::string& more = "") {
        EXPECT_EQ(request(path, method, more), R"({"success":true,"session_id":")" + client->session_id() + R"("})");
    }

    Olt olt;
    std::optional<client::Client> client;
};

const std::string ont = "configuration.ZebGCfg.pon.ont";
const std::string service = "configuration.ZebGCfg.pon.ont.service";

TEST_F(WholeConfiguration, OfAFullOltIsReadBackIdenticalAfterARestart) {
    const std::string all = R"(,"indices":["1-16","1-256"],"config_type":)";
    const std::string all_services = R"(,"indices":["1-16","1-256","1-8"],"config_type":)";
    succeed(ont, "set", all + R"("candidate","data":{"description":"Every home","ont_template":1})");
    succeed(service, "set",
            R"(,"indices":["1-16","1-256","1"],"config_type":"candidate","data":{"downstream_kbps":300000})");
    for (int number = 1; number <= 64; ++number) {
        succeed(ont, "set",
                fmt::format(R"(,"indices":["{0}","{1}"],"config_type":"candidate",)"
                            R"("data":{{"serial":[83,73,77,85,160,{0},0,{1},0,0],"ont_template":1}})",
                            number % 16 + 1, number));
    }
    succeed("command.commit", "command");
    succeed("command.save", "command");
    const auto onts = request(ont, "get", all + R"("running")");
    const auto services = request(service, "get", all_services + R"("running")");
    EXPECT_GT(onts.size(), 4096U * 300);
    EXPECT_GT(services.size(), 32768U * 100);

    restart_everything();
    EXPECT_TRUE(request(ont, "get", all + R"("running")") == onts);
    EXPECT_TRUE(request(service, "get", all_services + R"("running")") == services);
}

TEST_F(WholeConfiguration, WithoutASaveARestartForgetsAndDefaultReturnsToTheFactory) {
    const std::string hostname = "configuration.CommonGCfg.hostname";
    const std::string name_kept = R"(,"config_type":"candidate","data":{"hostname":"kept"})";
    succeed(hostname, "set", name_kept);
    succeed("command.commit", "command");
    succeed("command.save", "command");
    succeed(hostname, "set", R"(,"config_type":"candidate","data":{"hostname":"forgotten"})");
    succeed("command.commit", "command");
    restart_everything();
    EXPECT_THAT(request(hostname, "get", R"(,"config_type":"running")"), HasSubstr(R"("hostname":"kept")"));

    succeed("command.default", "command");
    EXPECT_THAT(request(hostname, "get", R"(,"config_type":"running")"), HasSubstr(R"("hostname":"kept")"));
    succeed("command.commit", "command");
    EXPECT_THAT(request(hostname, "get", R"(,"config_type":"running")"), HasSubstr(R"("hostname":"olt")"));
}

TEST_F(WholeConfiguration, RefusedCommitNamesThePathAndChangesNothing) {
    const std::string serial = R"("serial":[83,73,77,85,0,0,0,1,0,0])";
    succeed(ont, "set", R"(,"indices":["1","1-2"],"config_type":"candidate","data":{)" + serial + "}");
    const std::string refusal =
        R"({"success":true,"session_id":"1","errors":[{"message":{"key":"Commit failed: {p0}","params":{)"
        R"("p0":"ONT serial is already used by ONT 1/1"}},"path":"configuration.ZebGCfg.pon.ont.1.2"}]})";
    EXPECT_EQ(request("command.commit", "command"), refusal);
    EXPECT_EQ(request("command.commit", "command"), refusal) << "the candidate is kept";
    EXPECT_THAT(request(ont, "get", R"(,"indices":["1","1"],"config_type":"running")"), HasSubstr("[0,0,0"));
    succeed(ont, "delete", R"(,"indices":["1","2"],"config_type":"candidate")");
    succeed("command.commit", "command");
    EXPECT_THAT(request(ont, "get", R"(,"indices":["1","1"],"config_type":"running")"), HasSubstr("[83,73"));
}

} // namespace
} // namespace xpon::test
