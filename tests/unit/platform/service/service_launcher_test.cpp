#include "tests/support/recording_logger.hpp"
#include "xpon/service/service_launcher.hpp"

#include <functional>
#include <stdexcept>

#include <gtest/gtest.h>

namespace xpon::service {
namespace {

using core::Error;
using core::Result;

/// Runs what the test gives it.
class ScriptedService : public ServiceBaseZEB {
public:
    explicit ScriptedService(std::function<Result<void>()> body) : body_(std::move(body)) {}

    Result<void> run(const ServiceCtx&) override {
        return body_();
    }
    Result<void> stop(const ServiceCtx&) override {
        return core::success();
    }
    Result<void> config_change(const ServiceCtx&, const std::vector<Config_change>&) override {
        return core::success();
    }

private:
    std::function<Result<void>()> body_;
};

const auto logger = std::make_shared<test::RecordingLogger>();

ServiceLauncher launcher_of(std::function<Result<void>()> body) {
    return {std::make_unique<ScriptedService>(std::move(body)), logger, nullptr, true};
}

TEST(ServiceLauncherTest, RunHandsBackWhatTheServiceDid) {
    EXPECT_TRUE(launcher_of([] { return core::success(); }).run());
    EXPECT_EQ(launcher_of([]() -> Result<void> { return Error::NoAccess; }).run().error().code, Error::NoAccess);
    const auto thrown = launcher_of([]() -> Result<void> { throw std::runtime_error("port in use"); }).run();
    EXPECT_EQ(thrown.error().code, Error::Exception);
    EXPECT_EQ(thrown.error().info->message, "port in use");
    EXPECT_TRUE(logger->contains("An std::exception was thrown: port in use "));
    EXPECT_EQ(launcher_of([]() -> Result<void> { throw 1; }).run().error().code, Error::Exception);
}

TEST(ServiceLauncherTest, AStopBeforeRunIsNotLost) {
    bool ran = false;
    auto launcher = launcher_of([&ran]() -> Result<void> {
        ran = true;
        return core::success();
    });
    EXPECT_TRUE(launcher.stop());
    EXPECT_TRUE(launcher.run());
    EXPECT_FALSE(ran);
}

} // namespace
} // namespace xpon::service
