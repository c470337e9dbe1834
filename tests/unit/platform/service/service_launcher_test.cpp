#include "tests/support/recording_logger.hpp"
#include "xpon/service/service_launcher.hpp"

#include <csignal>
#include <functional>
#include <stdexcept>

#include <gtest/gtest.h>

namespace xpon::service {
namespace {

using core::Error;
using core::Result;

/// Runs what the test gives it, until stopped.
class ScriptedService : public ServiceBaseZEB {
public:
    explicit ScriptedService(std::function<Result<void>(ScriptedService&, const ServiceCtx&)> body)
        : body_(std::move(body)) {}

    Result<void> run(const ServiceCtx& context) override {
        return body_(*this, context);
    }
    Result<void> stop(const ServiceCtx&) override {
        stopped = 1;
        return core::success();
    }
    Result<void> config_change(const ServiceCtx&, const std::vector<Config_change>&) override {
        return core::success();
    }

    volatile std::sig_atomic_t stopped = 0;

private:
    std::function<Result<void>(ScriptedService&, const ServiceCtx&)> body_;
};

ServiceLauncher* launcher_of_handler = nullptr;

TEST(ServiceLauncherTest, RunHandsBackWhatTheServiceDid) {
    const auto logger = std::make_shared<test::RecordingLogger>();
    const auto result_of = [&logger](std::function<Result<void>(const ServiceCtx&)> body) {
        ServiceLauncher launcher(std::make_unique<ScriptedService>(
                                     [body](ScriptedService&, const ServiceCtx& context) { return body(context); }),
                                 logger, nullptr, true);
        return launcher.run();
    };
    EXPECT_TRUE(result_of([](const ServiceCtx& context) -> Result<void> {
        EXPECT_TRUE(context.is_master);
        return core::success();
    }));
    EXPECT_EQ(result_of([](const ServiceCtx&) -> Result<void> { return Error::NoAccess; }).error().code,
              Error::NoAccess);
    const auto thrown = result_of([](const ServiceCtx&) -> Result<void> { throw std::runtime_error("port in use"); });
    EXPECT_EQ(thrown.error().code, Error::Exception);
    EXPECT_EQ(thrown.error().info->message, "port in use");
    EXPECT_TRUE(logger->contains("An std::exception was thrown: port in use "));
    EXPECT_EQ(result_of([](const ServiceCtx&) -> Result<void> { throw 1; }).error().code, Error::Exception);
}

TEST(ServiceLauncherTest, ASignalHandlerStopsARunningService) {
    ServiceLauncher launcher(std::make_unique<ScriptedService>([](ScriptedService& self, auto&) -> Result<void> {
                                 std::raise(SIGUSR1);
                                 return self.stopped == 1 ? Result<void>(core::success()) : Error::InvalidState;
                             }),
                             std::make_shared<test::RecordingLogger>(), nullptr, true);
    launcher_of_handler = &launcher;
    std::signal(SIGUSR1, [](int) { std::ignore = launcher_of_handler->stop(); });
    EXPECT_TRUE(launcher.run());
    std::signal(SIGUSR1, SIG_DFL);
}

TEST(ServiceLauncherTest, AStopBeforeRunIsNotLost) {
    bool ran = false;
    ServiceLauncher launcher(std::make_unique<ScriptedService>([&ran](ScriptedService&, auto&) -> Result<void> {
                                 ran = true;
                                 return core::success();
                             }),
                             std::make_shared<test::RecordingLogger>(), nullptr, true);
    EXPECT_TRUE(launcher.stop());
    EXPECT_TRUE(launcher.run());
    EXPECT_FALSE(ran);
}

TEST(ServiceLauncherTest, NeedsAServiceAndALogger) {
    EXPECT_THROW(ServiceLauncher(nullptr, std::make_shared<test::RecordingLogger>(), nullptr, true),
                 std::invalid_argument);
}

} // namespace
} // namespace xpon::service
