// What a daemon does whose descriptors run out.

#include "api_service/protocol/route_table.hpp"
#include "tests/support/eventually.hpp"
#include "tests/system/olt.hpp"

#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string_view>
#include <tuple>
#include <vector>

#include <sys/resource.h>

#include <fmt/format.h>
#include <gtest/gtest.h>

namespace xpon::test {
namespace {

void limit_descriptors(const Process& process, rlim_t limit) {
    rlimit old{};
    ASSERT_EQ(prlimit(process.pid(), RLIMIT_NOFILE, nullptr, &old), 0);
    const rlimit wanted{.rlim_cur = limit, .rlim_max = old.rlim_max};
    ASSERT_EQ(prlimit(process.pid(), RLIMIT_NOFILE, &wanted, nullptr), 0);
}

constexpr rlim_t plenty = 1024;

TEST(Descriptors, EveryRouteAnswersWithFewLeft) {
    const bool sanitized = WITH_SANITIZERS;
    if (sanitized) {
        GTEST_SKIP() << "the sanitizers look at objects through pipes, and take one that they cannot see for a fault";
    }
    Olt olt;
    olt.start({"--boot-s", "0"});
    for (rlim_t left = 1; left <= 40; left += 3) {
        limit_descriptors(olt.daemon(), plenty);
        auto client = Olt::log_in("admin");
        limit_descriptors(olt.daemon(), olt.daemon().descriptors() + left);
        for (const auto& row : api_service::route_table()) {
            const auto request =
                fmt::format(R"({{"session_id":"{}","path":"{}","method":"{}","indices":["1"],"data":{}}})",
                            row.path == std::string_view("unauth") ? "0" : client.session_id(), row.path, row.method,
                            row.path == std::string_view("auth") ? R"({"user":"admin","password":"admin"})" : "{}");
            ASSERT_TRUE(ask(client, request).starts_with(R"({"success":)")) << request << " with " << left << " left\n"
                                                                            << olt.daemon().output();
        }
    }
    limit_descriptors(olt.daemon(), plenty);
    std::ignore = Olt::log_in("admin");
    olt.daemon().send_signal(SIGTERM);
    EXPECT_EQ(olt.daemon().wait(), 0) << olt.daemon().output();
}

TEST(Descriptors, AreEnoughOrTheStartIsRefused) {
    Olt olt;
    olt.start_simulator();
    const auto limited = olt.root() / "limited_daemon";
    int refused = 0;
    for (int limit = 3;; limit += 4) {
        ASSERT_LT(limit, 256) << "never started";
        std::ofstream(limited) << "#!/bin/sh\nulimit -n " << limit << "\nexec " API_SERVICE "\n";
        std::filesystem::permissions(limited, std::filesystem::perms::owner_all);
        olt.start_daemon(limited);
        std::optional<int> status;
        ASSERT_TRUE(eventually([&] {
            status = olt.daemon().wait(std::chrono::milliseconds(0));
            return status || client::Connection::open(client::TcpEndpoint{}).has_value();
        }));
        if (status) {
            std::ignore = olt.notifications_until_end(); // too many unread ones would stop the next daemon
            ASSERT_NE(*status, 0) << "with " << limit << " descriptors";
            ASSERT_LT(*status, 128) << "ended by a signal with " << limit << " descriptors\n" << olt.daemon().output();
            ++refused;
            continue;
        }
        olt.daemon().send_signal(SIGTERM);
        EXPECT_EQ(olt.daemon().wait(), 0) << olt.daemon().output();
        break;
    }
    EXPECT_GT(refused, 5);
}

TEST(Descriptors, AreKeptBackFromClients) {
    Olt olt;
    olt.start();
    auto polite = Olt::connect();
    const auto before = olt.daemon().descriptors();
    limit_descriptors(olt.daemon(), before + 256);
    {
        std::vector<client::Client> crowd;
        for (int number = 0; number < 250; ++number) {
            crowd.push_back(Olt::connect());
        }
        EXPECT_TRUE(eventually([&] { return olt.daemon().descriptors() > before + 150; }));
        EXPECT_TRUE(logs_in(polite, "admin", "admin"));
        EXPECT_LT(olt.daemon().descriptors(), before + 200) << "descriptors are left for what requests need";
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        EXPECT_FALSE(crowd.back().connection().receive_frame(deadline)) << "closed, not left waiting";
    }
    EXPECT_TRUE(eventually([&] { return olt.daemon().descriptors() <= before + 4; })) << olt.daemon().descriptors();
}

} // namespace
} // namespace xpon::test
