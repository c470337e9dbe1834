#include "tests/support/eventually.hpp"
#include "tests/system/console.hpp"
#include "tests/system/olt.hpp"
#include "tests/system/relay.hpp"

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <cstddef>
#include <deque>
#include <string>
#include <vector>

#include <sys/socket.h>

#include <arpa/inet.h>
#include <fmt/format.h>
#include <gmock/gmock.h>
#include <netinet/in.h>

namespace xpon::test {
namespace {

using namespace std::chrono_literals;
using testing::AnyOf;
using testing::HasSubstr;
using testing::StartsWith;
using Clock = std::chrono::steady_clock;

std::string ont_asked(int number) {
    return fmt::format(R"({{"path":"monitoring.interface.ont.state","method":"get","indices":["1","{}"]}})", number);
}

/// A gateway whose way to the daemon is looked at.
class ConsoleTraffic : public testing::Test {
protected:
    struct StartedOlt : Olt {
        StartedOlt() {
            start();
        }
    };
    StartedOlt olt;
    Relay relay;
    Console console{{"--service-port", std::to_string(relay_port)}};
};

TEST_F(ConsoleTraffic, OneSessionsRequestsKeepTheirOrderWhateverTheyComeBy) {
    std::deque<Browser> tabs(20);
    ASSERT_EQ(tabs.front().log_in("admin"), 200);
    for (auto& tab : tabs) {
        tab.cookie = tabs.front().cookie;
        ASSERT_EQ(tab.get("/api/session").status, 200);
    }
    olt.daemon().send_signal(SIGSTOP); // all of them are there before the first is answered
    for (int i = 0; i < 20; ++i) {
        tabs[static_cast<std::size_t>(i)].begin_post("/api", ont_asked(i + 1));
    }
    EXPECT_TRUE(eventually([&] { return relay.passed("ont.state").size() == 1; }));
    Browser other;
    other.cookie = tabs.front().cookie;
    EXPECT_EQ(other.get("/api/session").status, 200) << "what the gateway knows itself waits for nobody";
    olt.daemon().send_signal(SIGCONT);
    for (auto& tab : tabs) {
        EXPECT_THAT(tab.finish().body, StartsWith(R"({"success":true)"));
    }
    const auto passed = relay.passed("ont.state");
    ASSERT_EQ(passed.size(), 40U);
    for (std::size_t i = 0; i < passed.size(); i += 2) {
        EXPECT_THAT(passed[i].text, HasSubstr(fmt::format(R"(["1","{}"])", i / 2 + 1)));
        EXPECT_TRUE(!passed[i].is_answer && passed[i + 1].is_answer) << "one at a time";
    }
}

TEST_F(ConsoleTraffic, TheDaemonIsAskedOnceForAllWhoWatchTheSame) {
    std::deque<Browser> users(3);
    std::deque<EventListener> streams;
    const auto begin = Clock::now();
    for (auto& user : users) {
        ASSERT_EQ(user.log_in("admin"), 200);
        for (int i = 0; i < 8; ++i) {
            streams.emplace_back(user, "interval=500&watch=%5B%7B%22path%22:%22monitoring.system%22%7D%5D");
        }
    }
    for (int round = 0; round < 3; ++round) { // the uptime is another one each second
        for (auto& stream : streams) {
            EXPECT_NE(stream.next("answer"), "");
        }
    }
    const auto intervals = static_cast<std::size_t>((Clock::now() - begin) / 500ms);
    EXPECT_LE(relay.passed("monitoring.system").size() / 2, intervals + 1);

    // When the session goes in whose name it was asked, the next one lends its own.
    EXPECT_EQ(users.front().post("/api/logout").status, 204);
    EXPECT_NE(streams.back().next("answer"), "");
    EXPECT_NE(streams.back().next("answer"), "");
    EXPECT_THAT(relay.passed("monitoring.system").back().text, HasSubstr("\"success\":\ttrue"));
}

TEST_F(ConsoleTraffic, ARequestThatIsUnderWayWhenTheDaemonDiesIsNotSentAgain) {
    Browser browser;
    ASSERT_EQ(browser.log_in("admin"), 200);
    olt.daemon().send_signal(SIGSTOP);
    browser.begin_post("/api", ont_asked(1));
    ASSERT_TRUE(eventually([&] { return relay.passed("ont.state").size() == 1; }));
    olt.daemon().send_signal(SIGKILL);
    const auto answer = browser.finish();
    EXPECT_EQ(answer.status, 502);
    EXPECT_THAT(answer.body, HasSubstr("service_lost"));
    olt.daemon().wait();
    olt.start_daemon();
    olt.wait_until_ready();
    EXPECT_TRUE(eventually([&] { return browser.log_in("admin") == 200; }));
    EXPECT_EQ(relay.passed("ont.state").size(), 1U);
    EXPECT_THAT(browser.post("/api", ont_asked(1)).body, StartsWith(R"({"success":true)"));
}

/// A login with a wrong password from another address of this machine, sent, and not waited for.
core::UniqueFd guess_from(const char* address, const std::string& user) {
    core::UniqueFd guess(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_in own{};
    own.sin_family = AF_INET;
    inet_pton(AF_INET, address, &own.sin_addr);
    EXPECT_EQ(bind(guess.get(), reinterpret_cast<const sockaddr*>(&own), sizeof own), 0);
    auto console = own;
    console.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    console.sin_port = htons(console_port);
    EXPECT_EQ(connect(guess.get(), reinterpret_cast<const sockaddr*>(&console), sizeof console), 0);
    const auto body = fmt::format(R"({{"user":"{}","password":"guess"}})", user);
    const auto text = fmt::format("POST /api/login HTTP/1.1\r\nHost: 127.0.0.1:{}\r\nX-OLT-Console: 1\r\n"
                                  "Content-Type: application/json\r\nContent-Length: {}\r\nConnection: close\r\n\r\n{}",
                                  console_port, body.size(), body);
    EXPECT_EQ(send(guess.get(), text.data(), text.size(), MSG_NOSIGNAL), static_cast<ssize_t>(text.size()));
    return guess;
}

TEST_F(ConsoleTraffic, FloodOfLoginsHarmsOnlyTheFlooder) {
    Browser working;
    ASSERT_EQ(working.log_in("operator"), 200);
    olt.daemon().send_signal(SIGSTOP); // so that logins under way stay so
    std::deque<core::UniqueFd> guesses;
    for (int i = 0; i < 200; ++i) {
        guesses.push_back(guess_from("127.0.0.2", i % 2 == 0 ? "admin" : fmt::format("user{}", i)));
    }
    constexpr std::size_t admitted = 4; // of one address; that leaves room for others
    const auto is_answered = [](const core::UniqueFd& guess) {
        char first = 0;
        return recv(guess.get(), &first, sizeof first, MSG_PEEK | MSG_DONTWAIT) > 0;
    };
    const auto refused_at_once = static_cast<std::ptrdiff_t>(guesses.size() - admitted);
    EXPECT_TRUE(eventually([&] { return std::ranges::count_if(guesses, is_answered) >= refused_at_once; }));
    EXPECT_TRUE(eventually([&] { return relay.passed("guess").size() >= admitted; }));
    Browser viewer;
    Browser victim;
    viewer.begin_post("/api/login", R"({"user":"viewer","password":"viewer"})");
    victim.begin_post("/api/login", R"({"user":"admin","password":"admin"})");
    working.begin_post("/api", ont_asked(1));
    olt.daemon().send_signal(SIGCONT);
    EXPECT_EQ(viewer.finish().status, 200);
    EXPECT_EQ(victim.finish().status, 200) << "the user who is guessed at, from elsewhere";
    EXPECT_EQ(working.finish().status, 200);
    std::size_t slowed = 0;
    for (const auto& guess : guesses) {
        std::array<char, 4096> answer{};
        const auto size = recv(guess.get(), answer.data(), answer.size(), MSG_WAITALL);
        ASSERT_GT(size, 0);
        const std::string_view text(answer.data(), static_cast<std::size_t>(size));
        EXPECT_THAT(text, AnyOf(StartsWith("HTTP/1.1 401"), StartsWith("HTTP/1.1 429")));
        slowed += text.starts_with("HTTP/1.1 429") && text.find("Retry-After: ") != text.npos ? 1U : 0U;
    }
    EXPECT_EQ(guesses.size() - slowed, admitted);
    // The daemon, which looks passwords up in its one thread, has seen no more of them.
    EXPECT_EQ(relay.passed("guess").size(), 2 * admitted);
}

} // namespace
} // namespace xpon::test
