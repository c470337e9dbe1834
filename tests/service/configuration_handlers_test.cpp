// The handler templates with library functions that fail.

#include "api_service/handlers/configuration/delete_handler.hpp"
#include "api_service/handlers/configuration/get_handler.hpp"
#include "api_service/handlers/configuration/set_handler.hpp"
#include "tests/support/recording_logger.hpp"
#include "tests/support/temporary_olt_root.hpp"

#include <cerrno>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace xpon::api_service {
namespace {

using core::Error;
using testing::ElementsAre;

struct Record {
    int value;
};

cJSON* field_error(const char* path) {
    return cJSON_Parse(
        (R"([{"message":{"key":"Unknown key {p0}","params":{"p0":"x"}},"path":")" + std::string(path) + R"("}])")
            .c_str());
}

class ConfigurationHandlers : public testing::Test {
protected:
    test::TemporaryOltRoot root;
    std::shared_ptr<test::RecordingLogger> logger = std::make_shared<test::RecordingLogger>();
    std::shared_ptr<Session> session =
        std::make_shared<Session>("1", nullptr, std::make_shared<cfgdb::CfgDbWrapper>("test"));
    std::vector<std::string> calls;

    ConfigurationGetHandler<Record, 1> getter{logger,
                                              [this](const void*, Record* out, const unsigned short* indices) {
                                                  calls.push_back("running " + std::to_string(indices[0]));
                                                  out->value = indices[0];
                                                  return indices[0] == 5 ? (errno = EIO, -1) : 0;
                                              },
                                              [this](const void*, int, Record* out, const unsigned short* indices) {
                                                  calls.push_back("candidate " + std::to_string(indices[0]));
                                                  EXPECT_EQ(out->value, 0)
                                                      << "a record is zero-filled before it is read";
                                                  out->value = indices[0];
                                                  return 0;
                                              },
                                              [](const Record* record, cJSON* target, cJSON** errors) {
                                                  if (record->value >= 7) {
                                                      *errors = field_error(std::to_string(record->value).c_str());
                                                  }
                                                  cJSON_AddNumberToObject(target, "value", record->value);
                                                  return 0;
                                              }};
    ConfigurationSetHandler<Record, 1> setter{
        logger,
        [this](const void*, int, const Record* record, const unsigned short* indices) {
            calls.push_back("write " + std::to_string(record->value) + " to " + std::to_string(indices[0]));
            return indices[0] == 2 ? 3 : 0;
        },
        [](const cJSON* data, Record* out, cJSON** errors) {
            EXPECT_EQ(out->value, 0);
            if (cJSON_IsNumber(data) == 0) {
                *errors = field_error("data");
                return 0;
            }
            out->value = data->valueint;
            return out->value < 0 ? -1 : 0;
        }};

    static Request request(const char* range, ConfigurationType type, const char* data = "1") {
        return {.session_id = "1",
                .path = "p",
                .method = "m",
                .indices = {range},
                .config_type = type,
                .data = Payload(core::JsonTree(cJSON_Parse(data)))};
    }
    static std::string printed(const Payload& payload) {
        return core::JsonText(cJSON_PrintUnformatted(payload.get())).get();
    }
};

TEST_F(ConfigurationHandlers, GetReadsOnlyTheStoreAskedForInIndexOrder) {
    const auto response = getter(request("3,1-2", ConfigurationType::Candidate), session).value();
    EXPECT_EQ(printed(response.payload), R"([{"value":0},{"value":1},{"value":2}])");
    EXPECT_THAT(calls, ElementsAre("candidate 0", "candidate 1", "candidate 2"));
    calls.clear();
    EXPECT_TRUE(getter(request("2", ConfigurationType::Running), session).value().success);
    EXPECT_THAT(calls, ElementsAre("running 1"));
}

TEST_F(ConfigurationHandlers, GetAnswersAFailureAndNotTheRecordsBeforeIt) {
    EXPECT_EQ(getter(request("5-7", ConfigurationType::Running), session).error().code, Error::ErrorCApi);
    EXPECT_THAT(calls, ElementsAre("running 4", "running 5"));
    EXPECT_TRUE(logger->contains("C API function returned -1, errno=5"));
    EXPECT_EQ(getter(request("1", static_cast<ConfigurationType>(2)), session).error().info->message,
              "Invalid configuration type");
    EXPECT_EQ(getter(request("1", ConfigurationType::Running), nullptr).error().info->message, "Session is missing");
}

TEST_F(ConfigurationHandlers, GetAnswersTheFieldErrorsOfTheLastWrongRecord) {
    const auto response = getter(request("7-9", ConfigurationType::Candidate), session).value();
    EXPECT_FALSE(response.success);
    EXPECT_TRUE(response.payload.empty());
    EXPECT_THAT(response.errors.get_json_string().value(),
                testing::AllOf(testing::HasSubstr("\"8\""), testing::Not(testing::HasSubstr("\"7\""))));
    EXPECT_EQ(calls.size(), 3U);
}

TEST_F(ConfigurationHandlers, SetWritesUntilAWriteFails) {
    EXPECT_EQ(setter(request("1-4", ConfigurationType::Candidate, "9"), session).error().info->message,
              "C API function returned 3");
    EXPECT_THAT(calls, ElementsAre("write 9 to 0", "write 9 to 1", "write 9 to 2"));
}

TEST_F(ConfigurationHandlers, SetJudgesTheDataBeforeTheConfigurationType) {
    const auto response = setter(request("1", ConfigurationType::Running, "{}"), session).value();
    EXPECT_FALSE(response.success);
    EXPECT_FALSE(response.errors.empty());
    EXPECT_EQ(setter(request("1", ConfigurationType::Running), session).error().info->message,
              "Invalid configuration type");
    EXPECT_EQ(setter(request("1", ConfigurationType::Candidate, "-1"), session).error().code, Error::ErrorCApi);
    EXPECT_EQ(setter(request("1", ConfigurationType::Candidate), nullptr).error().info->message, "No session");
    session->cfgdb.reset();
    EXPECT_EQ(setter(request("1", ConfigurationType::Candidate), session).error().info->message,
              "CfgDb context is missing");
    EXPECT_TRUE(calls.empty());
}

TEST_F(ConfigurationHandlers, DeleteStopsAtTheFirstFailure) {
    std::vector<int> reset;
    const ConfigurationDeleteHandler<1> deleter(logger, [&](const void*, int, unsigned short* indices) {
        reset.push_back(indices[0]);
        return indices[0] == 4095 ? -1 : 0;
    });
    EXPECT_TRUE(deleter(request("1,4095", ConfigurationType::Candidate), session).value().success);
    EXPECT_THAT(reset, ElementsAre(0, 4094));
    EXPECT_EQ(deleter(request("4096", ConfigurationType::Candidate), session).error().code, Error::ErrorCApi);
    EXPECT_FALSE(deleter(request("x", ConfigurationType::Candidate), session).value().success);
}

} // namespace
} // namespace xpon::api_service
