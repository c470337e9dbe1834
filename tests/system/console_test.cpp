#include "tests/support/eventually.hpp"
#include "tests/system/console.hpp"
#include "tests/system/olt.hpp"

#include <chrono>
#include <csignal>
#include <deque>
#include <string>
#include <utility>
#include <vector>

#include <fmt/format.h>
#include <gmock/gmock.h>

namespace xpon::test {
namespace {

using namespace std::chrono_literals;
using testing::AllOf;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

// "monitoring.system", as a subscription.
constexpr auto system_watched = "interval=500&watch=%5B%7B%22path%22:%22monitoring.system%22%7D%5D";
constexpr auto constants = R"({"path":"monitoring.constants","method":"get"})";
constexpr auto system_asked = R"({"path":"monitoring.system","method":"get"})";

/// Whether the daemon itself takes this id for somebody's.
bool daemon_knows(const std::string& api_id) {
    auto client = Olt::connect();
    client.set_session_id(api_id);
    return ask_in_session(client, system_asked).starts_with(R"({"success":true)");
}

TEST(Console, KeepsTheApisSessionToItself) {
    Olt olt;
    olt.start();
    Console console;
    Browser browser;
    EXPECT_EQ(browser.get("/api/session").status, 401);
    EXPECT_EQ(browser.post("/api", system_asked).status, 401);

    const auto login = browser.post("/api/login", R"({"user":"viewer","password":"viewer"})");
    EXPECT_EQ(login.body, R"({"user":"viewer","privilege":"viewer","idle_left_s":900,"left_s":43200,)"
                          R"("idle_timeout_s":900,"absolute_timeout_s":43200})");
    EXPECT_THAT(login.head, ContainsRegex("Set-Cookie: olt_console_8080=[A-Za-z0-9_-]{43}; Path=/api; HttpOnly; "
                                          "SameSite=Strict\r\n"));
    EXPECT_THAT(login.head, AllOf(HasSubstr("Cache-Control: no-store"), HasSubstr("default-src 'none'"),
                                  HasSubstr("X-Content-Type-Options: nosniff"), HasSubstr("X-Frame-Options: DENY")));
    browser.cookie = login.cookie();
    Browser admin;
    ASSERT_EQ(admin.log_in("admin"), 200);

    // The administrator's session of the API has the id 2.
    const std::string rollback = R"({"session_id":"2","path":"command.rollback","method":"command"})";
    EXPECT_THAT(browser.post("/api", rollback).body, HasSubstr("Access denied"));
    EXPECT_EQ(admin.post("/api", rollback).body, R"({"success":true})");
    EXPECT_THAT(browser.post("/api", system_asked).body,
                AllOf(StartsWith(R"({"success":true,"data":{)"), Not(HasSubstr("session_id"))));
    for (const auto* path : {"auth", "unauth"}) {
        const auto own_login =
            fmt::format(R"({{"path":"{}","method":"auth","data":{{"user":"admin","password":"admin"}}}})", path);
        EXPECT_THAT(admin.post("/api", own_login).body, HasSubstr("bad_request"));
    }

    const auto guessed = {std::string("1"), std::string("2"), std::string(43, 'A'), std::string("..")};
    for (const auto& id : guessed) {
        Browser thief;
        thief.cookie = "olt_console_8080=" + id;
        EXPECT_EQ(thief.post("/api", system_asked).status, 401) << id;
    }
    // A logout ends the session on both sides, also for those who have kept the cookie.
    EXPECT_TRUE(daemon_knows("2"));
    EXPECT_EQ(admin.post("/api/logout").status, 204);
    EXPECT_TRUE(eventually([] { return !daemon_knows("2"); }));
    EXPECT_THAT(admin.post("/api", system_asked).body, HasSubstr(R"("reason":"logged_out")"));
    EXPECT_THAT(console.process().output(), AllOf(HasSubstr("127.0.0.1 viewer \"POST /api\" monitoring.system 200"),
                                                  Not(HasSubstr(browser.cookie.substr(20)))));
    console.process().send_signal(SIGTERM);
    EXPECT_EQ(console.process().wait(), 0);
    EXPECT_TRUE(eventually([] { return !daemon_knows("1"); }));
}

TEST(Console, RefusesWhatNoPageOfItsOwnSends) {
    Olt olt;
    olt.start();
    const Console console({"--pages", olt.root() / "no-page"});
    Browser browser;
    ASSERT_EQ(browser.log_in("admin"), 200);
    const auto host = std::string("Host: 127.0.0.1:8080\r\n");
    const auto post_head = "POST /api HTTP/1.1\r\nCookie: " + browser.cookie + "\r\nContent-Length: 2\r\n";
    const auto json = std::string("Content-Type: application/json\r\n");
    const auto own = std::string("X-OLT-Console: 1\r\n");
    const std::pair<std::string, int> cases[] = {
        {post_head + host + json + "\r\n{}", 403},
        {post_head + host + own + "\r\n{}", 415},
        {post_head + host + own + "Content-Type: text/plain\r\n\r\n{}", 415},
        {post_head + host + own + json + "Origin: http://attacker.example\r\n\r\n{}", 403},
        {post_head + host + own + json + "Origin: http://127.0.0.1:8081\r\n\r\n{}", 403},
        {post_head + host + own + json + "Sec-Fetch-Site: cross-site\r\n\r\n{}", 403},
        {post_head + "Host: attacker.example\r\n" + own + json + "\r\n{}", 421},
        {post_head + host + own + json + "Origin: http://127.0.0.1:8080\r\n\r\n{}", 400}, // no request, but from a page
        {"GET /api HTTP/1.1\r\n" + host + "\r\n", 405},
        {"GET /api/other HTTP/1.1\r\n" + host + "\r\n", 404},
        {"OPTIONS /api HTTP/1.1\r\n" + host + "\r\n", 405},
        {"GET /api/events HTTP/1.1\r\n" + host + "Sec-Fetch-Site: cross-site\r\n\r\n", 403},
        {"GET / HTTP/1.1\r\n" + host + "X: " + std::string(20'000, 'x') + "\r\n\r\n", 431},
        {"GET /onts HTTP/1.1\r\n" + host + "Sec-Fetch-Site: cross-site\r\n\r\n",
         404}, // a link to the page may be anywhere
        {"nonsense\r\n\r\n", 400},
        {"GET / HTTP/1.1\r\n\r\n", 400},
    };
    for (const auto& [bytes, status] : cases) {
        const auto answer = Browser().send(bytes);
        EXPECT_EQ(answer.status, status) << bytes.substr(0, 300) << answer.body;
        EXPECT_THAT(answer.head, Not(HasSubstr("Access-Control")));
    }
}

TEST(Console, EndsSessionsByItselfAndTellsThePage) {
    Olt olt;
    olt.start();
    const Console console({"--idle-timeout", "3", "--sessions-per-user", "1"});
    Browser first;
    ASSERT_EQ(first.log_in("admin"), 200);
    EventListener first_page(first, "");
    EXPECT_THAT(first_page.next("session"), ContainsRegex(R"(\{"idle_left_s":[123],"left_s":43[0-9]+\})"));
    Browser second;
    ASSERT_EQ(second.log_in("admin"), 200);
    EXPECT_EQ(first_page.next("end"), R"({"reason":"displaced"})");
    EXPECT_TRUE(first_page.ends());
    EXPECT_THAT(first.get("/api/session").body, HasSubstr(R"("reason":"displaced")"));

    // What pages do by themselves keeps nobody logged in.
    EventListener page(second, system_watched);
    EXPECT_THAT(page.next("answer"), StartsWith(R"({"watch":0,"answer":{"success":true,"data":{)"));
    int asked = 0;
    EXPECT_TRUE(eventually([&] {
        ++asked;
        return second.post("/api", constants, "X-OLT-Background: 1\r\n").status == 401;
    }));
    EXPECT_GT(asked, 1);
    EXPECT_EQ(page.next("end"), R"({"reason":"idle"})");
    EXPECT_THAT(second.get("/api/session").body, HasSubstr(R"("reason":"idle")"));
    EXPECT_TRUE(eventually([] { return !daemon_knows("2"); }));
}

TEST(Console, SaysWhyTheDaemonDoesNotAnswer) {
    Olt olt;
    olt.start();
    const Console console({"--request-timeout", "1"});
    Browser browser;
    ASSERT_EQ(browser.log_in("admin"), 200);
    EventListener page(browser, system_watched);
    EXPECT_EQ(page.next("service"), R"({"reachable":true})");
    ASSERT_NE(page.next("answer"), "");

    olt.daemon().send_signal(SIGSTOP);
    EXPECT_THAT(browser.post("/api", system_asked).body, HasSubstr("service_timeout"));
    EXPECT_THAT(page.next("trouble"), HasSubstr("service_timeout"));
    EXPECT_EQ(browser.get("/api/session").status, 200) << "others are served meanwhile";
    olt.daemon().send_signal(SIGCONT);
    EXPECT_NE(page.next("answer"), "");
    EXPECT_EQ(browser.post("/api", system_asked).status, 200) << "the session is still the same";

    olt.daemon().send_signal(SIGKILL);
    olt.daemon().wait();
    EXPECT_EQ(page.next("service"), R"({"reachable":false})");
    EXPECT_THAT(browser.post("/api", system_asked).body, HasSubstr("service_unreachable"));
    EXPECT_EQ(Browser().log_in("admin"), 502);
    olt.start_daemon();
    olt.wait_until_ready();
    EXPECT_EQ(page.next("end"), R"({"reason":"service_restarted"})");

    // Somebody else has the id 1 now.
    Browser other;
    ASSERT_EQ(other.log_in("viewer"), 200);
    EXPECT_THAT(browser.post("/api", system_asked).body, HasSubstr(R"("reason":"service_restarted")"));
    EXPECT_TRUE(daemon_knows("1"));

    olt.daemon().send_signal(SIGHUP);
    EXPECT_TRUE(eventually([&] { return other.post("/api", constants).status == 401; }));
    EXPECT_TRUE(eventually([&] { return browser.log_in("admin") == 200; }));
    EXPECT_EQ(browser.post("/api", system_asked).status, 200);
}

TEST(Console, WithstandsFloods) {
    Olt olt;
    olt.start();
    Console console;
    Browser polite;
    ASSERT_EQ(polite.log_in("admin"), 200);
    const auto expect_served = [&] {
        const auto begin = std::chrono::steady_clock::now();
        EXPECT_EQ(polite.post("/api", constants).status, 200);
        EXPECT_LT(std::chrono::steady_clock::now() - begin, 2s);
    };
    const auto descriptors = console.process().descriptors();

    int slowed = 0;
    for (int i = 0; i < 50; ++i) {
        slowed += Browser().post("/api/login", R"({"user":"admin","password":"guess"})").status == 429 ? 1 : 0;
    }
    EXPECT_GT(slowed, 40);
    EXPECT_EQ(Browser().log_in("viewer"), 200) << "another user is not slowed";
    expect_served();

    std::string endless(100UL << 20U, 'x');
    EXPECT_EQ(polite.post("/api", endless).status, 413);
    expect_served();

    std::deque<EventListener> streams;
    int refused = 0;
    for (int i = 0; i < 500; ++i) {
        streams.emplace_back(polite, system_watched);
        refused += streams.back().status() == 429 ? 1 : 0;
    }
    EXPECT_EQ(refused, 492);
    EXPECT_NE(streams.front().next("answer"), "");
    expect_served();
    streams.clear();
    EXPECT_TRUE(eventually([&] { return EventListener(polite, "").status() == 200; }));

    std::vector<client::Connection> half_requests;
    for (int i = 0; i < 200; ++i) {
        half_requests.push_back(client::Connection::open(client::TcpEndpoint{.port = console_port}).value());
        EXPECT_TRUE(half_requests.back().send_bytes("POST /api HT", std::chrono::steady_clock::now() + 1s));
    }
    expect_served();
    // All of them are given up while they still wait.
    EXPECT_TRUE(eventually([&] { return console.process().descriptors() <= descriptors + 8; }, 30s))
        << console.process().descriptors();
    expect_served();
}

TEST(Console, HoldsHundredsOfStreams) {
    Olt olt;
    olt.start();
    Console console({"--streams-per-session", "1000"});
    Browser browser;
    ASSERT_EQ(browser.log_in("viewer"), 200);
    std::deque<EventListener> streams;
    for (int i = 0; i < 300; ++i) {
        streams.emplace_back(browser, system_watched);
        ASSERT_EQ(streams.back().status(), 200);
    }
    for (auto& stream : streams) {
        EXPECT_NE(stream.next("answer"), "");
    }
    EXPECT_LT(console.process().descriptors(), 330U) << "a connection to the daemon for each";
    console.process().send_signal(SIGTERM);
    EXPECT_EQ(console.process().wait(), 0) << console.process().output();
}

TEST(ConsoleSettings, AreThoseOfTheShippedFile) {
    Process built_in({OLT_CONSOLE, "--show-settings"}, {});
    Process shipped({OLT_CONSOLE, "--config", XPON_SOURCE_DIR "/gateway/olt_console.conf", "--show-settings"}, {});
    EXPECT_EQ(built_in.wait(), 0);
    EXPECT_EQ(shipped.wait(), 0);
    EXPECT_EQ(shipped.output(), built_in.output());
    for (const std::vector<std::string>& bad : {std::vector<std::string>{"--listen", "0.0.0.0", "--port", "0"},
                                                {"--listen", "olt"},
                                                {"--certificate", "/dev/null"},
                                                {"--certificate", "/dev/null", "--key", "/dev/null"}}) {
        std::vector<std::string> command{OLT_CONSOLE};
        command.insert(command.end(), bad.begin(), bad.end());
        Process refused(command, {});
        EXPECT_EQ(refused.wait(), 1) << bad.back();
    }
}

} // namespace
} // namespace xpon::test
