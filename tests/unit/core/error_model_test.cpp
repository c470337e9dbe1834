#include "tests/support/recording_logger.hpp"
#include "xpon/core/c_status.hpp"
#include "xpon/core/error_payload.hpp"
#include "xpon/core/guard.hpp"
#include "xpon/core/result.hpp"

#include <new>
#include <sstream>
#include <stdexcept>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace xpon::core {
namespace {

TEST(ErrorModel, PrintsCodeMessageAndPlace) {
    EXPECT_EQ(ErrorPayload(static_cast<Error>(12)).to_string(), "Error: Unknown error");
    std::ostringstream out;
    ErrorPayload error(Error::NoAccess, "Invalid credentials");
    EXPECT_EQ(error.to_string(), "Error: NoAccess. Message: Invalid credentials.");
    out << error;
    EXPECT_THAT(out.str(),
                testing::MatchesRegex(R"(\[NoAccess\]: Invalid credentials \(.*error_model_test.cpp:[0-9]+\): .*)"));
    error.info.reset();
    EXPECT_EQ(error.to_string(), "Error: NoAccess");
}

TEST(ErrorModelDeathTest, WrongSideOfAResultEndsTheProcess) {
    const Result<int> failed = ErrorPayload(Error::Empty);
    EXPECT_DEATH((void)failed.value(), "");
}

TEST(CStatus, TellsStatusAndErrnoAndClearsErrno) {
    test::RecordingLogger logger;
    errno = EBADF; // left over from elsewhere: must not be blamed on the call
    EXPECT_EQ(call_c_api(logger, [] { return -1; }).error().info->message, "C API function returned -1");

    const auto error = call_c_api(logger, [] {
                           errno = ERANGE;
                           return 7;
                       }).error();
    EXPECT_EQ(error.info->message, "C API function returned 7, errno=34");
    EXPECT_EQ(errno, 0);
}

TEST(Guard, TurnsExceptionsIntoErrors) {
    test::RecordingLogger logger;
    const auto known = guarded(logger, []() -> Result<void> { throw std::runtime_error("disk on fire"); });
    EXPECT_EQ(known.error().code, Error::Exception);
    EXPECT_EQ(known.error().info->message, "disk on fire");
    EXPECT_FALSE(guarded(logger, []() -> Result<void> { throw std::bad_alloc(); }, exception_text_unpadded));
    const auto unknown = guarded(logger, []() -> Result<void> { throw 3; });
    EXPECT_EQ(unknown.error().to_string(), "Error: Exception");
    EXPECT_THAT(logger.texts(),
                testing::ElementsAre("An std::exception was thrown: disk on fire ",
                                     "An std::exception was thrown: std::bad_alloc", "An exception was thrown. "));
}

TEST(Guard, SurvivesALoggerThatFails) {
    struct FailingLogger : ILogger {
        [[nodiscard]] bool is_enabled(LogLevel) const override {
            return true;
        }
        void write(LogLevel, std::string_view, const std::source_location&) override {
            throw std::bad_alloc();
        }
    } logger;
    EXPECT_EQ(guarded(logger, []() -> Result<int> { throw 3; }).error().code, Error::Exception);
    log_error(logger, "lost {}", 1);
}

} // namespace
} // namespace xpon::core
