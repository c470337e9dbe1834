#include "tests/support/temporary_olt_root.hpp"
#include "xpon/logger/logger.hpp"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <utility>
#include <vector>

#include <sys/eventfd.h>
#include <sys/resource.h>

#include <gmock/gmock.h>

namespace xpon::logger {
namespace {

using core::Error;
using core::LogLevel;
using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

constexpr auto path = "/etc/zlog_modules_config/API-SERVICE.conf";
constexpr auto log_file = "var/log/api-service.log";

std::string shipped_configuration() {
    std::ifstream file(SHIPPED_CONFIGURATION);
    return {std::istreambuf_iterator<char>(file), {}};
}

class LoggerTest : public testing::Test {
protected:
    LoggerTest() {
        root.write("var/log/.keep", "");
    }

    auto create_context(std::string_view configuration, const std::string& category = "API-SERV") {
        root.write(std::string_view(path).substr(1), configuration);
        return Logger::create_context(path, category, 0);
    }

    test::TemporaryOltRoot root;
};

TEST_F(LoggerTest, ShippedConfigurationWritesBothCategoriesToOneFile) {
    const auto context = create_context(shipped_configuration());
    ASSERT_TRUE(context) << context.error().to_string();
    for (const auto* category : {"API-SERV", "API-SERV_IPC", "OTHER"}) {
        Logger logger(category);
        log(logger, LogLevel::Debug, "too small");
        log(logger, LogLevel::Info, "first");
        log_error(logger, "{} failed: %s%n", "disk");
    }
    const auto text = root.read(log_file);
    EXPECT_THAT(text, AllOf(HasSubstr("INFO   [API-SERV] "), HasSubstr("ERROR  [API-SERV_IPC] "),
                            HasSubstr(" disk failed: %s%n\n"), Not(HasSubstr("too small"))));
    EXPECT_EQ(std::ranges::count(text, '\n'), 4);
}

TEST_F(LoggerTest, FailuresNameTheFileAndTheCause) {
    const std::pair<const char*, const char*> cases[] = {
        {"no section\n", "malformed"},
        {"[rules]\nAPI-SERV.DEBUG >stdout; no_such_format\n", "malformed"},
        {"[rules]\nAPI-SERV.DEBUG \"%E(OLT_ROOT)/no/such/folder/a.log\"\n", "cannot be written"},
        {"[rules]\nOTHER.DEBUG >stdout\n", "no rule for category API-SERV"},
        {"", "no rule for category API-SERV"},
    };
    for (const auto& [configuration, cause] : cases) {
        const auto context = create_context(configuration);
        ASSERT_FALSE(context) << configuration;
        EXPECT_THAT(context.error().to_string(), HasSubstr(root.path().string() + path + ": "));
        EXPECT_THAT(context.error().to_string(), HasSubstr(cause));
    }
    const auto missing = Logger::create_context("/etc/none.conf", "API-SERV", 0);
    ASSERT_FALSE(missing);
    EXPECT_THAT(missing.error().to_string(), EndsWith("/etc/none.conf: No such file or directory."));
}

TEST_F(LoggerTest, WorksWhereOltRootIsUnset) {
    const auto configuration = root.path() / "api.conf";
    std::ofstream(configuration) << "[rules]\nAPI-SERV.DEBUG \"%E(OLT_ROOT)" << root.path().string() << "/a.log\"\n";
    unsetenv("OLT_ROOT");
    const auto context = Logger::create_context(configuration, "API-SERV", 0);
    ASSERT_TRUE(context) << context.error().to_string();
    Logger logger("API-SERV");
    log_error(logger, "on the device");
    EXPECT_THAT(root.read("a.log"), HasSubstr("on the device"));
}

TEST_F(LoggerTest, OneContextAtATimeAndANewOneAfterIt) {
    for (const auto* text : {"first life", "second life"}) {
        const auto context = create_context(shipped_configuration());
        ASSERT_TRUE(context);
        const auto second = create_context(shipped_configuration());
        ASSERT_FALSE(second);
        EXPECT_EQ(second.error().code, Error::Already);
        Logger logger("API-SERV");
        log_error(logger, "{}", text);
    }
    EXPECT_THAT(root.read(log_file), AllOf(HasSubstr("first life"), HasSubstr("second life")));

    Logger without_context("API-SERV");
    EXPECT_FALSE(without_context.is_enabled(LogLevel::Fatal));
    log_error(without_context, "lost");
}

TEST_F(LoggerTest, TextsCannotForgeLinesOrSteerTerminals) {
    const auto context = create_context(shipped_configuration());
    ASSERT_TRUE(context);
    Logger logger("API-SERV");
    using namespace std::string_literals;
    log_error(logger, "{}", "user \"a\r\n2026-01-01 forged\0\x1b[2J\x7f\xc2\x9b-\xc2\xb5\xff\""s);
    const auto text = root.read(log_file);
    EXPECT_EQ(std::ranges::count(text, '\n'), 1);
    EXPECT_THAT(text, HasSubstr("user \"a\\x0D\\x0A2026-01-01 forged\\x00\\x1B[2J\\x7F\\xC2\\x9B-\xc2\xb5\\xFF\"\n"));
}

/// Takes every descriptor that this process may have, as far as a small limit goes.
class NoDescriptorsLeft {
public:
    NoDescriptorsLeft() {
        getrlimit(RLIMIT_NOFILE, &before_);
        const rlimit few{.rlim_cur = 64, .rlim_max = before_.rlim_max};
        setrlimit(RLIMIT_NOFILE, &few);
        for (int fd = eventfd(0, 0); fd >= 0; fd = eventfd(0, 0)) {
            taken_.emplace_back(fd);
        }
    }
    NoDescriptorsLeft(const NoDescriptorsLeft&) = delete;
    NoDescriptorsLeft& operator=(const NoDescriptorsLeft&) = delete;
    ~NoDescriptorsLeft() {
        setrlimit(RLIMIT_NOFILE, &before_);
    }

private:
    rlimit before_{};
    std::vector<core::UniqueFd> taken_;
};

TEST_F(LoggerTest, WritesRotatesAndIsBoundedWithoutADescriptorLeft) {
    auto configuration = shipped_configuration();
    const auto context = create_context(configuration.replace(configuration.find("1MB"), 3, "4KB"));
    ASSERT_TRUE(context);
    Logger logger("API-SERV");
    {
        const NoDescriptorsLeft nothing_left;
        for (int line = 0; line < 1000; ++line) {
            log_error(logger, "line {} of many, long enough to fill a file of 4 KB within a hundred of them", line);
        }
    }
    EXPECT_THAT(root.read("var/log/api-service.log.0"), HasSubstr("line 9"));
    EXPECT_THAT(root.read(log_file) + root.read("var/log/api-service.log.0"), Not(HasSubstr("could not be written")));
    EXPECT_TRUE(std::filesystem::exists(root.path() / "var/log/api-service.log.4"));
    EXPECT_FALSE(std::filesystem::exists(root.path() / "var/log/api-service.log.5"));
}

TEST_F(LoggerTest, LinesThatCannotBeWrittenAreCountedAndToldLater) {
    const auto context = create_context(shipped_configuration());
    ASSERT_TRUE(context);
    Logger logger("API-SERV");
    const auto folder = root.path() / "var/log";
    const auto away = root.path() / "var/away";
    std::filesystem::rename(folder, away);
    log_error(logger, "lost");
    log_error(logger, "lost, too");
    std::filesystem::rename(away, folder);
    log_error(logger, "written");
    log_error(logger, "the next");
    const auto text = root.read(log_file);
    EXPECT_THAT(text, testing::ContainsRegex("written\n.*WARN .* 2 log lines could not be written: "
                                             "No such file or directory\n.*the next\n"));
    EXPECT_EQ(std::ranges::count(text, '\n'), 3);
}

} // namespace
} // namespace xpon::logger
