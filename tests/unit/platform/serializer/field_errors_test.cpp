#include "xpon/serializer/serializer.hpp"

#include <cerrno>
#include <memory>
#include <string>

#include <gtest/gtest.h>

namespace xpon::cfgdb {
namespace {

using Tree = std::unique_ptr<cJSON, decltype([](cJSON* tree) { cJSON_Delete(tree); })>;

std::string errors_of(const std::string& json) {
    const Tree data(cJSON_Parse(json.c_str()));
    NtpConfig config{};
    cJSON* errors = nullptr;
    EXPECT_EQ(deserialize_NtpConfig_from_json(data.get(), &config, &errors), 0);
    const Tree owner(errors);
    if (errors == nullptr) {
        return "";
    }
    char* text = cJSON_PrintUnformatted(errors);
    std::string result = text;
    cJSON_free(text);
    return result;
}

TEST(FieldErrors, HaveTheFormOfTheErrorModel) {
    EXPECT_EQ(errors_of(R"({"servers":[{"address":"a"},{"address":"a b"}],"min_poll":3})"),
              R"([{"message":{"key":"Character not allowed at byte {p0}, expected {p1}",)"
              R"("params":{"p0":1,"p1":"host"}},"path":"servers.1.address"},)"
              R"({"message":{"key":"Value {p0} is out of range {p1} to {p2}",)"
              R"("params":{"p0":3,"p1":4,"p2":17}},"path":"min_poll"}])");
    EXPECT_EQ(errors_of(R"({"servers":[{}]})"),
              R"([{"message":{"key":"Text is too short, {p0} bytes of at least {p1}","params":{"p0":0,"p1":1}},)"
              R"("path":"servers.0.address"}])");
    EXPECT_EQ(errors_of(""),
              R"([{"message":{"key":"Wrong type, expected {p0}","params":{"p0":"object"}},"path":"data"}])");
}

// Contradictions are looked for only in records whose fields are all good.
TEST(FieldErrors, NameContradictionsLast) {
    const auto contradiction = [](const std::string& reason, const std::string& path) {
        return R"({"message":{"key":"Fields contradict each other: {p0}","params":{"p0":")" + reason +
               R"("}},"path":")" + path + "\"}";
    };
    EXPECT_EQ(errors_of(R"({"enabled":true,"min_poll":11})"),
              "[" + contradiction("enabled needs a server", "servers") + "," +
                  contradiction("min_poll is greater than max_poll", "max_poll") + "]");
    EXPECT_EQ(errors_of(R"({"servers":[{"address":"a","prefer":true},{"address":"a","prefer":true}]})"),
              "[" + contradiction("the address is repeated", "servers.1.address") + "," +
                  contradiction("another server is preferred", "servers.1.prefer") + "]");
    EXPECT_EQ(errors_of(R"({"enabled":true,"min_poll":3})").find("contradict"), std::string::npos);
}

TEST(FieldErrors, AreThirtyTwoAtMost) {
    std::string json = "{";
    for (int i = 0; i < 100; ++i) {
        json += "\"k" + std::to_string(i) + "\":1,";
    }
    const Tree data(cJSON_Parse((json + "\"min_poll\":0}").c_str()));
    NtpConfig config{};
    cJSON* errors = nullptr;
    ASSERT_EQ(deserialize_NtpConfig_from_json(data.get(), &config, &errors), 0);
    const Tree owner(errors);
    EXPECT_EQ(cJSON_GetArraySize(errors), 32);
    EXPECT_STREQ(cJSON_GetObjectItem(cJSON_GetArrayItem(errors, 31), "path")->valuestring, "k30");
}

TEST(Serializers, RefuseNullPointers) {
    NtpConfig config{};
    cJSON* errors = nullptr;
    const Tree target(cJSON_CreateObject());
    errno = 0;
    EXPECT_NE(deserialize_NtpConfig_from_json(target.get(), nullptr, &errors), 0);
    EXPECT_EQ(errno, EINVAL);
    errno = 0;
    EXPECT_NE(serialize_NtpConfig_to_json(&config, nullptr, &errors), 0);
    EXPECT_EQ(errno, EINVAL);
}

} // namespace
} // namespace xpon::cfgdb
