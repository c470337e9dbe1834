// The handler templates with library functions that fail at one record of many.

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

using testing::ElementsAre;

struct Record {
    int value;
};

/// The library fails at the record with index 3.
class ConfigurationHandlers : public testing::Test {
protected:
    int visit(int index) {
        visited.push_back(index);
        return index == 3 ? (errno = EIO, -1) : 0;
    }
    Request request(const char* range) const {
        return {.session_id = "1",
                .path = "p",
                .method = "m",
                .indices = {range},
                .config_type = ConfigurationType::Candidate,
                .data = Payload(core::JsonTree(cJSON_CreateNumber(1)))};
    }

    test::TemporaryOltRoot root;
    std::shared_ptr<test::RecordingLogger> logger = std::make_shared<test::RecordingLogger>();
    std::shared_ptr<Session> session =
        std::make_shared<Session>("1", nullptr, std::make_shared<cfgdb::CfgDbWrapper>("test"));
    std::vector<int> visited;
};

TEST_F(ConfigurationHandlers, GetAnswersFieldErrorsOrAFailureAndNoRecordsBesides) {
    const ConfigurationGetHandler<Record, 1> getter(
        logger, [](const void*, Record*, const unsigned short*) { return -1; },
        [this](const void*, int, Record* out, const unsigned short* indices) {
            EXPECT_EQ(out->value, 0) << "a record is zero-filled before it is read";
            out->value = indices[0];
            return visit(indices[0]);
        },
        [](const Record* record, cJSON*, cJSON** errors) {
            const auto path = std::to_string(record->value);
            *errors = cJSON_Parse((R"([{"message":{"key":"Access denied"},"path":")" + path + R"("}])").c_str());
            return 0;
        });
    const auto response = getter(request("1-3"), session).value();
    EXPECT_FALSE(response.success);
    EXPECT_TRUE(response.payload.empty());
    EXPECT_THAT(response.errors.get_json_string().value(),
                testing::AllOf(testing::HasSubstr("\"2\""), testing::Not(testing::HasSubstr("\"1\""))))
        << "the errors of the last wrong record only";
    EXPECT_EQ(getter(request("4-6"), session).error().code, Error::ErrorCApi);
    EXPECT_THAT(visited, ElementsAre(0, 1, 2, 3));
}

TEST_F(ConfigurationHandlers, SetAndDeleteStopAtTheFirstFailure) {
    const ConfigurationSetHandler<Record, 1> setter(
        logger,
        [this](const void*, int, const Record* record, const unsigned short* indices) {
            EXPECT_EQ(record->value, 9);
            return visit(indices[0]);
        },
        [](const cJSON*, Record* out, cJSON**) {
            EXPECT_EQ(out->value, 0);
            out->value = 9;
            return 0;
        });
    EXPECT_EQ(setter(request("3-6"), session).error().code, Error::ErrorCApi);
    const ConfigurationDeleteHandler<1> deleter(
        logger, [this](const void*, int, unsigned short* indices) { return visit(indices[0]); });
    EXPECT_EQ(deleter(request("1,4-4096"), session).error().code, Error::ErrorCApi);
    EXPECT_THAT(visited, ElementsAre(2, 3, 0, 3));
}

} // namespace
} // namespace xpon::api_service
