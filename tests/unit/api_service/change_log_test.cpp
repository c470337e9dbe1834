#include "api_service/change_log.hpp"
#include "tests/support/recording_logger.hpp"

#include <gmock/gmock.h>

namespace xpon::api_service {
namespace {

using testing::ElementsAre;

Request request_of(const char* method, const char* path, std::vector<std::string> indices, const char* data) {
    Request request;
    request.session_id = "7";
    request.method = method;
    request.path = path;
    request.indices = std::move(indices);
    request.data = Payload(JsonTree(cJSON_Parse(data)));
    return request;
}

TEST(ChangeLog, CutsAndQuotesWhatClientsSend) {
    const auto logger = std::make_shared<test::RecordingLogger>();
    ChangeLog changes(logger);
    const auto login = request_of("auth", "auth", {}, R"({"user":"a\": done\n"})");
    changes.failed(ChangeRecord(login), -1);
    changes.failed(ChangeRecord(request_of("set", "x", {"1", "2-3,5"}, "{}")), -1);
    changes.failed(ChangeRecord(request_of("set", "x", {"1", "2]: done"}, "{}")), -1);
    changes.failed(ChangeRecord(request_of("set", "x", {std::string(200, '1')}, "{}")), -1);
    changes.failed(ChangeRecord(request_of("get", "x", {}, "{}")), -1);
    auto unknown = request_of("set", "a\nb", {}, "{}");
    unknown.session_id = std::string(1'000'000, '9');
    changes.unknown_session(unknown, -1);
    EXPECT_THAT(
        logger->texts(),
        ElementsAre(R"(Session 7: auth auth user "a\x22: done\x0A": failed)", "Session 7: set x [1 2-3,5]: failed",
                    R"(Session 7: set x ["1 2]: done"]: failed)",
                    "Session 7: set x [" + std::string(128, '1') + "..(200 bytes)]: failed",
                    "Session \"" + std::string(32, '9') + R"("..(1000000 bytes) is unknown: "set" "a\x0Ab": refused)"));
}

TEST(ChangeLog, HoldsBackRefusalsButNothingThatWasDone) {
    const auto logger = std::make_shared<test::RecordingLogger>();
    ChangeLog changes(logger);
    auto request = request_of("set", "x", {}, "{}");
    const auto done = Result<Response>(Response::make_success_response(nullptr, logger));
    for (int i = 0; i < 100; ++i) {
        changes.refused(ChangeRecord(request), -1);
        changes.unknown_session(request, -1);
        changes.answered(ChangeRecord(request), -1, done);
    }
    request.session_id.reset();
    changes.failed(ChangeRecord(request), -1);
    request.session_id = "7";
    changes.tell_held_back(); // not before the minute is over
    EXPECT_EQ(logger->texts().size(), 60U + 10U + 100U);

    const auto own = std::make_shared<test::RecordingLogger>();
    changes.write_to(own);
    changes.failed(ChangeRecord(request), -1);
    EXPECT_THAT(own->texts(), ElementsAre("Session 7: set x: failed"));
    own->least_level = core::LogLevel::Error;
    changes.failed(ChangeRecord(request), -1);
    EXPECT_EQ(logger->texts().size(), 171U) << "a category that nothing is written of";
}

TEST(ChangeLog, TellsHowManyLinesAPeriodHeldBack) {
    LineLimit limit(2, std::chrono::seconds(60));
    const auto begin = LineLimit::Clock::now();
    EXPECT_TRUE(limit.admits(begin) && limit.admits(begin));
    EXPECT_FALSE(limit.admits(begin) || limit.admits(begin + std::chrono::seconds(59)));
    EXPECT_EQ(limit.take_held_back(begin + std::chrono::seconds(59)), 0U);
    EXPECT_EQ(limit.take_held_back(begin + std::chrono::seconds(60)), 2U);
    EXPECT_EQ(limit.take_held_back(begin + std::chrono::seconds(60)), 0U);
    EXPECT_TRUE(limit.admits(begin + std::chrono::seconds(60)));
}

} // namespace
} // namespace xpon::api_service
