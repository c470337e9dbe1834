// What a client receives for everything that can go wrong before and in a handler.

#include "api_service/protocol/route_table.hpp"
#include "tests/service/service_fixture.hpp"

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

} // namespace
} // namespace xpon::test
