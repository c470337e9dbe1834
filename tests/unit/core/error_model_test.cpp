#include "tests/support/recording_logger.hpp"
#include "xpon/core/c_status.hpp"
#include "xpon/core/error_payload.hpp"
#include "xpon/core/result.hpp"

#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace xpon::core {
namespace {

TEST(ErrorModel, NamesCodesAndPayloads) {
    EXPECT_EQ(to_string(Error::NoError), "No error");
    EXPECT_EQ(to_string(Error::OutOfRange), "OutOfRange");
    EXPECT_EQ(to_string(static_cast<Error>(12)), "Unknown error");

    ErrorPayload bare(Error::Empty);
    EXPECT_EQ(bare.to_string(), "Error: Empty");
    bare.info.reset();
    EXPECT_EQ(bare.to_string(), "Error: Empty");
    EXPECT_EQ(ErrorPayload(Error::CommonError, "cJSON_Parse() failed").to_string(),
              "Error: CommonError. Message: cJSON_Parse() failed.");
}

TEST(ErrorModel, PrintsThePlaceOfTheError) {
    std::ostringstream out;
    ErrorPayload error(Error::NoAccess, "Invalid credentials");
    out << error;
    EXPECT_THAT(out.str(),
                testing::MatchesRegex(R"(\[NoAccess\]: Invalid credentials \(.*error_model_test.cpp:[0-9]+\): .*)"));

    error.info->location = {};
    out.str("");
    out << error;
    EXPECT_EQ(out.str(), "[NoAccess]: Invalid credentials (:0): ");
}

TEST(ErrorModelDeathTest, WrongSideOfAResultEndsTheProcess) {
    const Result<int> failed = ErrorPayload(Error::Empty);
    const Result<int> made = 3;
    EXPECT_DEATH((void)failed.value(), "");
    EXPECT_DEATH((void)made.error(), "");
}

TEST(CStatus, TellsStatusAndErrnoAndClearsErrno) {
    test::RecordingLogger logger;
    errno = EBADF; // left over from elsewhere: must not be blamed on the call
    EXPECT_EQ(call_c_api(logger, [] { return -1; }).error().info->message, "C API function returned -1");

    const auto error = call_c_api(logger, [] {
                           errno = ERANGE;
                           return 7;
                       }).error();
    EXPECT_EQ(error.code, Error::ErrorCApi);
    EXPECT_EQ(error.info->message, "C API function returned 7, errno=34");
    EXPECT_EQ(errno, 0);
    EXPECT_THAT(logger.texts(),
                testing::ElementsAre("C API function returned -1", "C API function returned 7, errno=34"));

    EXPECT_TRUE(call_c_api(logger, [] {
        errno = EAGAIN;
        return 0;
    }));
    EXPECT_EQ(errno, 0);
}

} // namespace
} // namespace xpon::core
