#include "tests/support/recording_logger.hpp"
#include "xpon/service/service_launcher.hpp"

#include <memory>
#include <stdexcept>

#include <gtest/gtest.h>

namespace xpon::service {
namespace {

using core::Result;

class BrokenService : public ServiceBaseZEB {
public:
    Result<void> run(const ServiceCtx&) override {
        throw std::runtime_error("port in use");
    }
    Result<void> stop(const ServiceCtx&) override {
        return core::success();
    }
    Result<void> config_change(const ServiceCtx&, const std::vector<Config_change>&) override {
        return core::success();
    }
};

TEST(ServiceLauncherTest, AFailureIsHandedBackAndAStopBeforeRunIsNotLost) {
    const auto logger = std::make_shared<test::RecordingLogger>();
    ServiceLauncher launcher(std::make_unique<BrokenService>(), logger, nullptr, true);
    const auto failed = launcher.run();
    EXPECT_EQ(failed.error().code, core::Error::Exception);
    EXPECT_EQ(failed.error().info->message, "port in use");
    EXPECT_TRUE(launcher.stop());
    EXPECT_TRUE(launcher.run());
}

} // namespace
} // namespace xpon::service
