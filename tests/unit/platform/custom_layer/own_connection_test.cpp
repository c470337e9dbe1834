#include "custom_layer/own_connection.hpp"
#include "tests/unit/platform/ipc/peer_process.hpp"
#include "xpon/custom_layer/custom_layer.h"

#include <cerrno>
#include <chrono>
#include <optional>
#include <vector>

namespace xpon {
namespace {

using namespace std::chrono_literals;
using ipc::Operation;
using ipc::PeerThread;
using test::eventually;
using testing::AnyOf;
using testing::ElementsAre;
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
    static PeerThread::Answer answers(int status) {
        return [status](const ipc::ServerRequest&) { return ipc::ServerAnswer{status, {}, {}}; };
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
        const PeerThread manager(ipc::peer, answers(0));
        EXPECT_TRUE(eventually([] { return reconfigure() == 0; }));
    }
    EXPECT_THAT(reconfigure(), AnyOf(ECONNREFUSED, ECONNRESET));
}

TEST_F(OwnConnectionTest, AnUpdateWaitsForItsEndAndPassesItOn) {
    int status_questions = 0;
    const PeerThread manager(ipc::peer, [&](const ipc::ServerRequest& request) -> ipc::ServerAnswer {
        if (static_cast<Operation>(request.operation) == Operation::update_firmware) {
            return {};
        }
        EXPECT_EQ(static_cast<Operation>(request.operation), Operation::get_firmware_update_status);
        return {++status_questions < 5 ? EBUSY : ENOSPC, {}, {}};
    });
    EXPECT_EQ(errno_of(custom_layer__update_firmware("/firmware/new 1.img")), ENOSPC);
    EXPECT_THAT(manager.requests(), ElementsAre("/firmware/new 1.img", "", "", "", "", ""));
}

TEST_F(OwnConnectionTest, AnUpdateThatIsRefusedDoesNotWaitForAnotherOne) {
    const PeerThread manager(ipc::peer, answers(EBUSY));
    EXPECT_EQ(errno_of(custom_layer__update_firmware("x")), EBUSY);
    EXPECT_THAT(manager.requests(), ElementsAre("x"));
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
