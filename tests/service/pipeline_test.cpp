// What a client receives, row by row, for everything that can go wrong with a request.

#include "tests/service/service_fixture.hpp"

#include <chrono>
#include <optional>

#include <gmock/gmock.h>

namespace xpon::test {
namespace {

using testing::Contains;
using testing::IsSupersetOf;
using namespace std::string_literals;

class Pipeline : public ServiceTest {};

TEST_F(Pipeline, AnswersInTheExactForm) {
    EXPECT_EQ(exchange(connection, R"({"path":"test.echo","method":"echo","data":[1,"x"]})"),
              "{\n\t\"success\":\ttrue,\n\t\"session_id\":\t\"\",\n\t\"data\":\t[1, \"x\"]\n}");
}

TEST_F(Pipeline, FramesThatAreNoRequests) {
    for (const char* frame : {"garbage", "{}", "[]", R"({"path":"test.echo"})", R"({"path":"test.echo","method":1})",
                              R"({"path":"test.echo","method":"echo","config_type":"Running"})"}) {
        EXPECT_EQ(ask(frame), not_processed("api_service")) << frame;
    }
    EXPECT_THAT(take_log(), IsSupersetOf({"Error: CommonError. Message: cJSON_Parse() failed."s,
                                          "Error: CommonError. Message: Invalid config type: Running."s}));
}

TEST_F(Pipeline, UnknownRoutes) {
    EXPECT_EQ(ask(R"({"path":"command.save.all","method":"command"})"), not_processed("api_service"));
    EXPECT_EQ(ask(R"({"path":"command.commit","method":"get"})"), not_processed("api_service"));
    EXPECT_THAT(take_log(),
                IsSupersetOf({"Path command.save.all not found"s, "Method get not found for path command.commit"s}));
}

TEST_F(Pipeline, UnknownSessionsComeBeforeUnknownRoutes) {
    for (const char* id : {"1", "", "01"}) {
        EXPECT_EQ(ask(R"({"session_id":")"s + id + R"(","path":"nowhere","method":"get"})"), access_denied("")) << id;
    }
}

TEST_F(Pipeline, TooLittlePrivilege) {
    const auto id = log_in("viewer");
    EXPECT_EQ(ask(R"({"session_id":")" + id + R"(","path":"test.echo.admin","method":"echo"})"), access_denied(id));
    EXPECT_EQ(ask(R"({"path":"test.echo.view","method":"echo"})"), access_denied(""));
}

TEST_F(Pipeline, FailingPreHookAndFailingHandler) {
    const auto id = log_in("operator");
    EXPECT_EQ(
        ask(R"({"session_id":")" + id +
            R"(","path":"configuration.ZebGCfg.pon.ont","method":"get","indices":["1"],"config_type":"running"})"),
        not_processed("api_service"));
    EXPECT_THAT(take_log(), Contains("Error: InvalidInputArg. Message: Invalid number of indices for request."));
    EXPECT_EQ(ask(R"({"path":"unauth","method":"auth"})"), not_processed("unauth"));
    EXPECT_THAT(take_log(), Contains("No session"));
}

TEST_F(Pipeline, OneFrameIsServedPerArrivalOfData) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    const auto echo = R"({"path":"test.echo","method":"echo","data":)"s;
    ASSERT_TRUE(connection.send_bytes(echo + "1}\0"s + echo + "2}\0"s, deadline));
    EXPECT_THAT(connection.receive_frame(deadline).value(), testing::HasSubstr("\t1"));
    EXPECT_THAT(ask(echo + "3}"), testing::HasSubstr(":2"));
}

TEST_F(Pipeline, BadClientsDoNotDisturbOthers) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    auto babbler = connect();
    ASSERT_TRUE(babbler.send_bytes(std::string(8 << 20, 'x'), deadline));
    auto nester = connect();
    ASSERT_TRUE(
        nester.send_frame(R"({"path":"test.echo","method":"echo","data":)" + std::string(200'000, '['), deadline));
    std::optional vanisher = connect();
    ASSERT_TRUE(vanisher->send_frame(R"({"path":"test.echo","method":"echo"})", deadline));
    vanisher.reset();
    auto sleeper = connect(); // never reads its answer
    ASSERT_TRUE(sleeper.send_frame(
        R"({"path":"test.echo","method":"echo","data":")" + std::string(1 << 20, 'y') + "\"}", deadline));
    EXPECT_EQ(ask(R"({"path":"test.echo","method":"echo"})"), R"({"success":true,"session_id":""})");
    EXPECT_EQ(ask(nester, "{}"), not_processed("api_service"));
}

} // namespace
} // namespace xpon::test
