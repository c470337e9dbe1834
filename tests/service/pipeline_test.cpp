// What a client receives for everything that can go wrong before and in a handler.

#include "api_service/protocol/route_table.hpp"
#include "tests/service/service_fixture.hpp"

#include <chrono>
#include <functional>
#include <map>
#include <vector>

#include <fmt/format.h>
#include <gmock/gmock.h>

namespace xpon::test {
namespace {

using Pipeline = ServiceTest;
using enum api_service::PrivilegeLevel;

TEST_F(Pipeline, EveryRouteIsRefusedBelowItsPrivilegeAndReachedFromThereOn) {
    for (const auto& [user, level] :
         {std::pair{"", Nothing}, {"viewer", Viewer}, {"operator", Operator}, {"admin", Administrator}}) {
        for (const auto& row : api_service::route_table()) {
            const auto id = level == Nothing ? std::string() : log_in(user);
            const auto session = id.empty() ? std::string() : fmt::format(R"("session_id":"{}",)", id);
            const auto answer = ask(fmt::format(R"({{{}"path":"{}","method":"{}"}})", session, row.path, row.method));
            const auto where = fmt::format("{} {} as '{}'", row.method, row.path, user);
            EXPECT_THAT(answer, testing::StartsWith(R"({"success":)")) << where;
            EXPECT_EQ(answer == access_denied(id), level < row.privilege) << where;
        }
    }
}

TEST_F(Pipeline, Refusals) {
    const auto id = log_in("operator");
    const auto generic = not_processed("api_service");
    struct Case {
        std::string frame;
        std::string answer;
        std::string log;
    };
    const Case cases[] = {
        {"garbage", generic, "Error: CommonError. Message: cJSON_Parse() failed."},
        {R"({"path":"command.save.all","method":"command"})", generic, "Path command.save.all not found"},
        {R"({"path":"command.commit","method":"get"})", generic, "Method get not found for path command.commit"},
        {fmt::format(R"({{"session_id":"{}","path":"configuration.ZebGCfg.pon.ont","method":"get","indices":["1"]}})",
                     id),
         generic, "Error: InvalidInputArg. Message: Invalid number of indices for request."},
        {R"({"path":"unauth","method":"auth"})", not_processed("unauth"), "No session"},
    };
    for (const auto& [frame, answer, log] : cases) {
        take_log();
        EXPECT_EQ(ask(frame), answer) << frame;
        EXPECT_THAT(take_log(), testing::Contains(log)) << frame;
    }
    for (const char* unknown : {"", "01"}) {
        EXPECT_EQ(ask(fmt::format(R"({{"session_id":"{}","path":"nowhere","method":"get"}})", unknown)),
                  access_denied(""));
    }
}

// Two clients whose requests take long ask again at once; a third one waits for theirs of now, not for their next ones.
TEST_F(Pipeline, RequestsAreServedInTheOrderOfTheirArrival) {
    const auto path = root.path().string() + "/api";
    const auto soon = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    std::vector<client::Connection> clients;
    for (int i = 0; i < 3; ++i) {
        clients.push_back(client::Connection::open(client::UnixEndpoint{path}).value());
    }
    const auto send = [&](std::size_t client, const std::string& user) {
        constexpr auto frame = R"({{"path":"auth","method":"auth","data":{{"user":"{0}","password":"{0}"}}}})";
        EXPECT_TRUE(clients[client].send_frame(fmt::format(frame, user), soon));
    };
    const std::map<std::string, std::function<void()>> sent_meanwhile{
        {"begin", [&] { send(0, "first"), send(1, "second"); }},
        {"first", [&] { send(2, "third"); }},
        {"second", [&] { send(0, "first again"); }}};
    std::vector<std::string> served;
    pam->while_opening = [&](const std::string& user) {
        served.push_back(user);
        if (const auto more = sent_meanwhile.find(user); more != sent_meanwhile.end()) {
            more->second();
        }
        for (const auto begin = std::chrono::steady_clock::now();
             std::chrono::steady_clock::now() < begin + std::chrono::milliseconds(2);) {
        } // as long as a real one takes at least
    };
    const std::vector<std::string> by_arrival{"begin", "first", "second", "third", "first again"};
    for (int attempt = 0; attempt < 10 && served != by_arrival; ++attempt) {
        for (auto& client : clients) {
            // Accepted, and no client whose last request took long, unless the machine was busy with something else.
            EXPECT_TRUE(client.send_frame(R"({"path":"test.echo","method":"echo"})", soon));
            EXPECT_TRUE(client.receive_frame(soon));
        }
        served.clear();
        ask(R"({"path":"auth","method":"auth","data":{"user":"begin","password":"begin"}})");
        for (const std::size_t client : {0, 1, 2, 0}) {
            EXPECT_TRUE(clients[client].receive_frame(soon));
        }
    }
    EXPECT_EQ(served, by_arrival);
}

} // namespace
} // namespace xpon::test
