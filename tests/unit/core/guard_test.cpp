#include "tests/support/recording_logger.hpp"
#include "xpon/core/guard.hpp"

#include <new>
#include <stdexcept>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace xpon::core {
namespace {

using testing::ElementsAre;

TEST(Guard, TurnsExceptionsIntoErrors) {
    test::RecordingLogger logger;
    const auto known = guarded(logger, []() -> Result<void> { throw std::runtime_error("disk on fire"); });
    EXPECT_EQ(known.error().code, Error::Exception);
    EXPECT_EQ(known.error().info->message, "disk on fire");
    EXPECT_FALSE(guarded(logger, []() -> Result<void> { throw std::bad_alloc(); }, exception_text_unpadded));
    const auto unknown = guarded(logger, []() -> Result<void> { throw 3; });
    EXPECT_EQ(unknown.error().to_string(), "Error: Exception");
    EXPECT_THAT(logger.texts(),
                ElementsAre("An std::exception was thrown: disk on fire ",
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
