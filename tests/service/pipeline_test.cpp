// What a client receives for everything that can go wrong before and in a handler.

#include "tests/service/service_fixture.hpp"

#include <fmt/format.h>
#include <gmock/gmock.h>

namespace xpon::test {
namespace {

using Pipeline = ServiceTest;

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
