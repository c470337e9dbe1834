#include "tests/system/isolation.hpp"
#include "tests/system/olt.hpp"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <string>
#include <utility>

#include <sys/mount.h>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <unistd.h>

namespace xpon::test {
namespace {

namespace fs = std::filesystem;

TEST(Login, IsDecidedByPamAndTheUsersPrivilege) {
    Olt olt;
    olt.start();
    auto client = Olt::connect();
    const std::string refused = R"({"success":false,"session_id":"","errors":[{"message":{"key":"Access denied",)"
                                R"("params":{"p0":"InvalidCredentials"}},"path":"auth"}]})";
    const std::pair<const char*, std::string> cases[] = {
        {R"({"user":"admin","password":"wrong"})", refused},
        {R"({"user":"admin","password":""})", refused},
        {R"({"user":"nobody","password":"nobody"})", refused},
        {R"({"user":"viewer","password":"viewer"})",
         R"({"success":true,"session_id":"1","data":{"session_id":"1","web_privilege":"viewer"}})"},
        {R"({"user":"operator","password":"operator"})",
         R"({"success":true,"session_id":"2","data":{"session_id":"2","web_privilege":"operator"}})"},
        {R"({"user":"admin","password":"admin"})",
         R"({"success":true,"session_id":"3","data":{"session_id":"3","web_privilege":"administrator"}})"},
    };
    for (const auto& [data, answer] : cases) {
        EXPECT_EQ(ask(client, std::string(R"({"path":"auth","method":"auth","data":)") + data + "}"), answer) << data;
    }
    EXPECT_THAT(ask(client, R"({"path":"auth","method":"auth","data":{"user":"guest","password":"guest"}})"),
                testing::HasSubstr(R"("p0":"PrivilegeNotSet")"));
}

TEST(Login, LeavesNoPasswordInAnyLog) {
    Olt olt;
    const auto logging = olt.root() / "etc/zlog_modules_config/API-SERVICE.conf";
    auto rules = read_file(logging);
    rules.replace(rules.find(".INFO "), 6, ".DEBUG ");
    std::ofstream(logging) << rules;
    const std::string right = "Right-pass-1f7c";
    const std::string wrong = "Wrong-pass-93ab";
    std::ofstream(olt.root() / "etc/demo_users") << "admin:" << right << ":api_service\n";
    olt.start();
    auto client = Olt::connect();
    EXPECT_TRUE(logs_in(client, "admin", right));
    EXPECT_FALSE(logs_in(client, "admin", wrong));
    // A request that cannot be read must not be quoted either.
    ask(client, R"({"path":"auth","method":"auth","data":{"user":"admin","password":[")" + wrong + R"("]}})");
    ask(client, R"({"path":"auth","method":"auth","data":{"user":"admin","password":")" + wrong);
    olt.daemon().send_signal(SIGTERM);
    ASSERT_EQ(olt.daemon().wait(), 0);

    std::string everything = olt.daemon().output() + olt.simulator().output();
    for (const auto& entry : fs::recursive_directory_iterator(olt.root() / "var")) {
        everything += entry.is_regular_file() ? read_file(entry.path()) : "";
    }
    EXPECT_NE(everything.find("Invalid credentials"), std::string::npos) << "nothing was logged at all";
    EXPECT_EQ(everything.find("-pass-"), std::string::npos);
}

TEST(Login, LeavesALineWithUserAndProcessInTheFileOfChanges) {
    Olt olt;
    olt.start();
    auto client = Olt::connect();
    EXPECT_FALSE(logs_in(client, "admin", "wrong"));
    EXPECT_TRUE(logs_in(client, "admin", "admin"));
    ask(client, R"({"session_id":"77","path":"configuration.CommonGCfg.hostname","method":"set"})");
    const auto lines = read_file(olt.root() / "var/log/api-service-changes.log");
    const auto who = fmt::format("(uid {}, pid {})\n", getuid(), getpid());
    EXPECT_THAT(lines, testing::HasSubstr(R"( Session none: auth auth user "admin": refused )" + who));
    EXPECT_THAT(lines, testing::HasSubstr(R"( Session 1: auth auth user "admin": done )" + who));
    EXPECT_THAT(lines, testing::HasSubstr(
                           R"( Session "77" is unknown: "set" "configuration.CommonGCfg.hostname": refused )" + who));
    EXPECT_THAT(read_file(olt.root() / "var/log/api-service.log"),
                testing::HasSubstr(lines.substr(0, lines.find('\n'))));
}

/// "secret" as Debian stores it.
constexpr auto yescrypt_of_secret = "$y$j9T$F5Jx5fExrKuPp53xLKQ..1$GmcwIgvdUC9qLWcKCi6gklUa1dM3ziD43YxYNURLKy0";

/// Puts a file in place of one of the machine's for this process and its children only.
bool overlay(const fs::path& file, const fs::path& place) {
    return mount(file.c_str(), place.c_str(), nullptr, MS_BIND, nullptr) == 0;
}

/// An OLT in namespaces of its own, with the shipped PAM file, the real modules and accounts of its own, the password
/// of each of which is "secret".
class ShippedPamFile : public testing::Test {
protected:
    void SetUp() override {
        if (getuid() != 0 || !is_isolated()) {
            GTEST_SKIP() << "needs root and a mount namespace, for accounts of its own";
        }
        const auto passwd = olt.root() / "tmp/passwd";
        const auto shadow = olt.root() / "tmp/shadow";
        std::ofstream(passwd) << "root:x:0:0::/root:/bin/sh\nadmin:x:60000:60000::/:/bin/false\n"
                                 "operator:x:60001:60001::/:/bin/false\nviewer:x:60002:60002::/:/bin/false\n"
                                 "guest:x:999:999::/:/bin/false\n";
        std::ofstream(shadow) << fmt::format("root:{0}:20000::::::\nadmin:{0}:20000::::::\n"
                                             "operator:{0}:20000:::::1:\nviewer:{0}:10000:0:30:7:5::\n"
                                             "guest:{0}:20000::::::\n",
                                             yescrypt_of_secret);
        fs::permissions(shadow, fs::perms::owner_read | fs::perms::owner_write);
        ASSERT_TRUE(overlay(passwd, "/etc/passwd") && overlay(shadow, "/etc/shadow"));
        ASSERT_EQ(mount("none", "/run", "tmpfs", 0, nullptr), 0); // where wrong passwords are counted
        fs::copy_file(XPON_SOURCE_DIR "/packaging/pam/api_service", olt.pam_folder() / "api_service",
                      fs::copy_options::overwrite_existing);
        olt.start();
    }

    void TearDown() override {
        if (!IsSkipped() && !HasFatalFailure()) {
            olt.daemon().send_signal(SIGTERM);
            EXPECT_EQ(olt.daemon().wait(), 0) << olt.daemon().output();
        }
    }

    Olt olt;
};

TEST_F(ShippedPamFile, NeverDelaysAndLocksAfterFiveWrongPasswords) {
    auto client = Olt::connect();
    auto shortest = std::chrono::steady_clock::duration::max(); // of all, for other work of the machine adds to each
    for (int i = 0; i < 4; ++i) {
        const auto begin = std::chrono::steady_clock::now();
        EXPECT_FALSE(logs_in(client, "admin", "wrong"));
        shortest = std::min(shortest, std::chrono::steady_clock::now() - begin);
    }
    EXPECT_LT(shortest, std::chrono::milliseconds(500)); // the usual stack waits two seconds
    // The right one is accepted and takes the count of wrong ones back.
    EXPECT_TRUE(logs_in(client, "admin", "secret"));
    for (int i = 0; i < 5; ++i) {
        EXPECT_FALSE(logs_in(client, "admin", "wrong"));
    }
    // Five in a row close the account for a while, also to the right one, but no other way into the machine.
    EXPECT_FALSE(logs_in(client, "admin", "secret"));
    EXPECT_TRUE(fs::exists("/run/api_service/faillock/admin"));
    EXPECT_FALSE(fs::exists("/run/faillock"));
}

TEST_F(ShippedPamFile, TellsNobodyWhyAnAccountIsRefused) {
    auto client = Olt::connect();
    const auto answer_to = [&](const char* user, const char* password) {
        return ask(client, fmt::format(R"({{"path":"auth","method":"auth","data":{{"user":"{}","password":"{}"}}}})",
                                       user, password));
    };
    const auto unknown = answer_to("stranger", "secret");
    EXPECT_THAT(unknown, testing::HasSubstr("InvalidCredentials"));
    for (const auto& [user, why] : {std::pair{"root", "root"},
                                    {"guest", "an account of the system"},
                                    {"operator", "an expired account"},
                                    {"viewer", "an expired password"}}) {
        EXPECT_EQ(answer_to(user, "secret"), unknown) << why;
        EXPECT_EQ(answer_to(user, "wrong"), unknown) << why;
    }
    EXPECT_TRUE(logs_in(client, "admin", "secret"));
    // A folder that cannot be there: nothing would be counted.
    fs::remove_all("/run/api_service");
    std::ofstream("/run/api_service") << "in the way";
    EXPECT_EQ(answer_to("admin", "secret"), unknown);
}

} // namespace
} // namespace xpon::test
