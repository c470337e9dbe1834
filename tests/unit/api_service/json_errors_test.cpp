#include "api_service/protocol/json_errors.hpp"
#include "tests/support/recording_logger.hpp"

#include <limits>

#include <gmock/gmock.h>

namespace xpon::api_service {
namespace {

class JsonErrorsTest : public testing::Test {
protected:
    std::shared_ptr<test::RecordingLogger> logger = std::make_shared<test::RecordingLogger>();
};

TEST_F(JsonErrorsTest, KeepOrderAndEveryDigitAndAreReadBackUnchanged) {
    JsonErrors errors(logger);
    errors.add_error({Json_errors::request_not_processed, "api_service", logger});
    JsonError error(Json_errors::out_of_range, "servers.1.version", logger);
    error.add_param(std::int8_t{-5});
    error.add_param(std::numeric_limits<std::uint64_t>::max());
    error.add_param(std::numeric_limits<std::int64_t>::min());
    error.add_param(std::numeric_limits<std::uint32_t>::max());
    error.add_param(0.5);
    error.add_param("text \"quoted\"");
    errors.add_error(error);
    const auto printed = errors.get_json_string().value();
    const JsonTree tree(cJSON_Parse(printed.c_str()));
    EXPECT_STREQ(core::JsonText(cJSON_PrintUnformatted(tree.get())).get(),
                 R"([{"message":{"key":"Request could not be processed","params":{}},"path":"api_service"},)"
                 R"({"message":{"key":"Value {p0} is out of range {p1} to {p2}","params":{"p0":-5,)"
                 R"("p1":"18446744073709551615","p2":"-9223372036854775808","p3":4294967295,"p4":0.5,)"
                 R"("p5":"text \"quoted\""}},"path":"servers.1.version"}])");
    JsonErrors read(logger);
    ASSERT_TRUE(read.add_errors_from_cjson(tree.get()));
    EXPECT_EQ(read.get_json_string().value(), printed);
}

TEST_F(JsonErrorsTest, RefusesWhatIsNoErrorList) {
    JsonErrors errors(logger);
    EXPECT_EQ(errors.add_errors_from_cjson(nullptr).error().info->message, "Object cannot be null");
    for (const char* text : {R"([1])", R"([{"path":"x"}])", R"([{"message":{"key":"no such text"},"path":"x"}])",
                             R"([{"message":{"key":"Access denied","params":{"p0":[]}},"path":"x"}])"}) {
        const JsonTree tree(cJSON_Parse(text));
        EXPECT_FALSE(errors.add_errors_from_cjson(tree.get())) << text;
    }
    EXPECT_TRUE(errors.empty());
}

} // namespace
} // namespace xpon::api_service
