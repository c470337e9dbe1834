#include "api_service/protocol/request_parser.hpp"
#include "tests/support/recording_logger.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace xpon::api_service {
namespace {

class RequestParserTest : public testing::Test {
protected:
    std::shared_ptr<test::RecordingLogger> logger = std::make_shared<test::RecordingLogger>();
    RequestParser parser{logger};
};

TEST_F(RequestParserTest, ReadsEveryMember) {
    const auto request = parser
                             .parse_request(R"({"session_id":"3","path":"configuration.ZebGCfg.pon.ont","method":"get",
        "indices":["1-4,7","1-32"],"config_type":"running","data":{"a":[1]},"unknown":true})")
                             .value();
    EXPECT_EQ(request.session_id, "3");
    EXPECT_EQ(request.path, "configuration.ZebGCfg.pon.ont");
    EXPECT_EQ(request.method, "get");
    EXPECT_THAT(request.indices, testing::ElementsAre("1-4,7", "1-32"));
    EXPECT_EQ(request.config_type, ConfigurationType::Running);
    EXPECT_TRUE(cJSON_IsObject(request.data.get()));
}

TEST_F(RequestParserTest, TakesOptionalMembersAsAbsent) {
    for (const char* text : {R"({"path":"p","method":"m"})", R"({"path":"p","method":"m","indices":"1"})",
                             R"({"path":"p","method":"m","session_id":7,"config_type":null})"}) {
        const auto request = parser.parse_request(text).value();
        EXPECT_FALSE(request.session_id) << text;
        EXPECT_FALSE(request.config_type) << text;
        EXPECT_TRUE(request.indices.empty()) << text;
        EXPECT_TRUE(request.data.empty()) << text;
    }
}

TEST_F(RequestParserTest, RefusesWithTheReason) {
    const std::vector<std::pair<std::string, std::string>> cases{
        {"garbage", "cJSON_Parse() failed"},
        {std::string(2000, '['), "cJSON_Parse() failed"},
        {R"({"method":"m"})", "cJSON_GetObjectItemCaseSensitive() failed"},
        {R"([])", "cJSON_GetObjectItemCaseSensitive() failed"},
        {R"({"path":1,"method":"m"})", "failed for path (cJSON_IsString failed)"},
        {R"({"path":"p","method":"m","indices":["1",2]})", "failed for 1 (cJSON_IsString failed)"},
        {R"({"path":"p","method":"m","config_type":"Running"})", "Invalid config type: Running"},
    };
    for (const auto& [text, message] : cases) {
        const auto request = parser.parse_request(text);
        ASSERT_FALSE(request) << text;
        EXPECT_EQ(request.error().code, core::Error::CommonError) << text;
        EXPECT_EQ(request.error().info->message, message) << text;
    }
    EXPECT_TRUE(logger->contains("failed for 1 (cJSON_IsString failed)"));
}

TEST_F(RequestParserTest, PrintsAnswersInTheIndentedForm) {
    auto response = Response::make_success_response(nullptr, logger);
    EXPECT_EQ(parser.make_response(response).value(), "{\n\t\"success\":\ttrue,\n\t\"session_id\":\t\"\"\n}");

    response.session_id = "3";
    for (const char* data : {R"({"a":[1,"x",{}]})", "[]", "[1]", "\"text\"", "1.5", "null", "true"}) {
        response.payload = Payload(core::JsonTree(cJSON_Parse(data)));
        const auto answer = parser.make_response(response).value();
        const core::JsonTree tree(cJSON_Parse(answer.c_str()));
        const core::JsonText printed(cJSON_PrintUnformatted(cJSON_GetObjectItemCaseSensitive(tree.get(), "data")));
        EXPECT_STREQ(printed.get(), data);
        EXPECT_EQ(parser.make_response(response).value(), answer) << "printing must not change the payload";
    }

    const auto refusal =
        Response::make_error_response(nullptr, JsonError(Json_errors::access_denied, "api_service", logger), logger);
    EXPECT_EQ(parser.make_response(refusal).value(),
              "{\n\t\"success\":\tfalse,\n\t\"session_id\":\t\"\",\n\t\"errors\":\t[{\n\t\t\t\"message\":\t{\n"
              "\t\t\t\t\"key\":\t\"Access denied\",\n\t\t\t\t\"params\":\t{\n\t\t\t\t}\n\t\t\t},\n"
              "\t\t\t\"path\":\t\"api_service\"\n\t\t}]\n}");
}

} // namespace
} // namespace xpon::api_service
