#include "custom_layer/own_connection.hpp"
#include "tests/unit/platform/ipc/peer_thread.hpp"
#include "xpon/custom_layer/custom_layer.h"
#include "xpon/peer_side/operations.hpp"

#include <cerrno>
#include <chrono>
#include <memory>
#include <optional>
#include <thread>

namespace xpon {
namespace {

using namespace std::chrono_literals;
using ipc::PeerThread;
using peer_side::Operation;
using test::eventually;
using testing::AnyOf;
using Clock = std::chrono::steady_clock;

/// The calls that get no handle. The system manager is a thread of this process.
class OwnConnectionTest : public testing::Test {
protected:
    OwnConnectionTest() {
        custom_layer::renew_own_connection(logger);
    }

    static int errno_of(int status) {
        return status == 0 ? 0 : errno;
    }
    static int reconfigure() {
        return errno_of(custom_layer__reconfigure_olt());
    }

    test::TemporaryOltRoot root;
    std::shared_ptr<test::RecordingLogger> logger = std::make_shared<test::RecordingLogger>();
};

TEST_F(OwnConnectionTest, ADaemonThatIsAwayCostsLittleAndIsFoundWhenItComes) {
    EXPECT_EQ(reconfigure(), ECONNREFUSED);
    const auto known_to_be_away = Clock::now();
    for (int call = 0; call < 20; ++call) {
        EXPECT_EQ(reconfigure(), ECONNREFUSED);
    }
    EXPECT_LT(Clock::now() - known_to_be_away, 1s);
    for (int life = 0; life < 2; ++life) {
        const PeerThread manager;
        EXPECT_TRUE(eventually([] { return reconfigure() == 0; }));
    }
    EXPECT_THAT(reconfigure(), AnyOf(ECONNREFUSED, ECONNRESET));
}

TEST_F(OwnConnectionTest, AnUpdateEndsWithItsDaemon) {
    std::optional<PeerThread> manager;
    manager.emplace(ipc::peer, [](const ipc::ServerRequest& request) {
        const bool is_status = static_cast<Operation>(request.operation) == Operation::get_firmware_update_status;
        return ipc::ServerAnswer{is_status ? EBUSY : 0, {}, 5ms};
    });
    std::jthread killer([&] {
        EXPECT_TRUE(eventually([&] { return manager->requests().size() > 3; }));
        manager.reset();
    });
    EXPECT_THAT(errno_of(custom_layer__update_firmware("/firmware/new.img")), AnyOf(ECONNRESET, ECONNREFUSED));
}

} // namespace
} // namespace xpon
