#include "api_service/protocol/request_parser.hpp"
#include "tests/support/recording_logger.hpp"

#include <cstdlib>
#include <string>
#include <string_view>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <malloc.h>

namespace xpon::api_service {
namespace {

int freed_secrets = 0;

/// Counts the blocks given back that hold a secret.
void release(void* block) {
    const std::string_view text(static_cast<const char*>(block), block == nullptr ? 0 : malloc_usable_size(block));
    freed_secrets += text.find("Secret-pass-4711-and-more") != std::string_view::npos ? 1 : 0;
    std::free(block);
}

class RequestParserTest : public testing::Test {
protected:
    std::shared_ptr<test::RecordingLogger> logger = std::make_shared<test::RecordingLogger>();
    RequestParser parser{logger};
};

TEST_F(RequestParserTest, TakesOptionalMembersAsAbsent) {
    for (const char* text : {R"({"path":"p","method":"m"})", R"({"path":"p","method":"m","indices":"1"})",
                             R"({"path":"p","method":"m","session_id":7,"config_type":null})",
                             R"({"path":"p","method":"m","other":"\\u0000"})"}) {
        const auto request = parser.parse_request(text).value();
        EXPECT_FALSE(request.session_id) << text;
        EXPECT_FALSE(request.config_type) << text;
        EXPECT_TRUE(request.indices.empty()) << text;
        EXPECT_TRUE(request.data.empty()) << text;
    }
}

TEST_F(RequestParserTest, RefusesWithTheReason) {
    const std::pair<std::string, const char*> cases[] = {
        {std::string(2000, '['), "cJSON_Parse() failed"},
        {R"({"method":"m"})", "cJSON_GetObjectItemCaseSensitive() failed"},
        {R"([])", "cJSON_GetObjectItemCaseSensitive() failed"},
        {R"({"path":1,"method":"m"})", "failed for path (cJSON_IsString failed)"},
        {R"({"path":"p","method":"m","indices":["1",2]})", "failed for 1 (cJSON_IsString failed)"},
        {R"({"path":"p","method":"m","data":["\\\u0000"]})", "The request holds an escaped NUL"},
        {R"({"path":"p","method":"m","config_type":"Running"})", "Invalid config type: Running"},
    };
    for (const auto& [text, message] : cases) {
        const auto request = parser.parse_request(text);
        ASSERT_FALSE(request) << text;
        EXPECT_EQ(request.error().info->message, message) << text;
    }
}

TEST_F(RequestParserTest, OverwritesTextsBeforeTheirMemoryIsFreed) {
    cJSON_Hooks hooks{.malloc_fn = std::malloc, .free_fn = release};
    cJSON_InitHooks(&hooks);
    const std::string member = R"("Secret-pass-4711-and-more")";
    for (const auto& where : {R"("data":{"user":"a","password":)" + member + "}", R"("data":)" + member,
                              R"("data":[{"a":[)" + member + "]}]", R"("session_id":)" + member}) {
        const auto request = parser.parse_request(R"({"path":"auth","method":"auth",)" + where + "}");
        EXPECT_TRUE(request) << where;
    }
    cJSON_Delete(cJSON_Parse(member.c_str())); // what finds one
    cJSON_InitHooks(nullptr);
    EXPECT_EQ(freed_secrets, 1);
}

TEST_F(RequestParserTest, PrintsAnswersInTheIndentedForm) {
    auto response = Response::make_success_response(nullptr, logger);
    EXPECT_EQ(parser.make_response(response).value(), "{\n\t\"success\":\ttrue,\n\t\"session_id\":\t\"\"\n}");

    response.payload = Payload(core::JsonTree(cJSON_Parse(R"([1,"x",{}])")));
    EXPECT_EQ(parser.make_response(response).value(),
              "{\n\t\"success\":\ttrue,\n\t\"session_id\":\t\"\",\n\t\"data\":\t[1, \"x\", {\n\t\t}]\n}");
    const auto refusal =
        Response::make_error_response(nullptr, JsonError(Json_errors::access_denied, "api_service", logger), logger);
    EXPECT_EQ(parser.make_response(refusal).value(),
              "{\n\t\"success\":\tfalse,\n\t\"session_id\":\t\"\",\n\t\"errors\":\t[{\n\t\t\t\"message\":\t{\n"
              "\t\t\t\t\"key\":\t\"Access denied\",\n\t\t\t\t\"params\":\t{\n\t\t\t\t}\n\t\t\t},\n"
              "\t\t\t\"path\":\t\"api_service\"\n\t\t}]\n}");
}

} // namespace
} // namespace xpon::api_service
