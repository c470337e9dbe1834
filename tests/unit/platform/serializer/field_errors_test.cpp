#include "tests/unit/platform/serializer/json_records.hpp"
#include "xpon/serializer/serializer.hpp"

#include <cerrno>

namespace xpon::cfgdb {
namespace {

using serializer::Tree;

// Contradictions are looked for only in records whose fields are all good.
TEST(FieldErrors, HaveTheFormOfTheErrorModel) {
    test::Record record;
    const auto errors_of = [&](const char* json) {
        return test::printed(test::read(test::table_of<NtpConfig>(), json, record).get());
    };
    EXPECT_EQ(errors_of(R"({"enabled":true,"servers":[{},{"address":"a b"}],"min_poll":3})"),
              R"([{"message":{"key":"Text is too short, {p0} bytes of at least {p1}","params":{"p0":0,"p1":1}},)"
              R"("path":"servers.0.address"},)"
              R"({"message":{"key":"Character not allowed at byte {p0}, expected {p1}",)"
              R"("params":{"p0":1,"p1":"host"}},"path":"servers.1.address"},)"
              R"({"message":{"key":"Value {p0} is out of range {p1} to {p2}",)"
              R"("params":{"p0":3,"p1":4,"p2":17}},"path":"min_poll"}])");
    EXPECT_EQ(errors_of(R"({"enabled":true})"), R"([{"message":{"key":"Fields contradict each other: {p0}",)"
                                                R"("params":{"p0":"enabled needs a server"}},"path":"servers"}])");
    EXPECT_EQ(errors_of(""),
              R"([{"message":{"key":"Wrong type, expected {p0}","params":{"p0":"object"}},"path":"data"}])");
}

TEST(FieldErrors, AreThirtyTwoAtMost) {
    std::string json = R"({"min_poll":0)";
    for (int i = 0; i < 100; ++i) {
        json += ",\"k" + std::to_string(i) + "\":1";
    }
    test::Record record;
    const auto errors = test::read(test::table_of<NtpConfig>(), json + "}", record);
    EXPECT_EQ(cJSON_GetArraySize(errors.get()), 32);
    EXPECT_STREQ(cJSON_GetObjectItem(cJSON_GetArrayItem(errors.get(), 31), "path")->valuestring, "k30");
}

TEST(Serializers, RefuseNullPointers) {
    NtpConfig config{};
    cJSON* errors = nullptr;
    const Tree target(cJSON_CreateObject());
    errno = 0;
    EXPECT_NE(deserialize_NtpConfig_from_json(target.get(), nullptr, &errors), 0);
    EXPECT_EQ(std::exchange(errno, 0), EINVAL);
    EXPECT_NE(serialize_NtpConfig_to_json(&config, nullptr, &errors), 0);
    EXPECT_EQ(errno, EINVAL);
}

} // namespace
} // namespace xpon::cfgdb
