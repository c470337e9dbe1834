#include "tests/support/process.hpp"
#include "tests/unit/platform/ipc/peer_thread.hpp"

#include <cerrno>
#include <csignal>

namespace xpon::ipc {
namespace {

using namespace std::chrono_literals;

TEST_F(IpcTest, APeerKilledWhileItIsAskedEndsTheRequest) {
    for (int life = 0; life < 2; ++life) {
        test::Process mortal({OTHER_PROCESS, "mortal-peer"}, {});
        ASSERT_TRUE(mortal.wait_for_line("ready")) << mortal.output();
        if (life == 0) {
            ASSERT_TRUE(endpoint->connect(peer));
        }
        ASSERT_EQ(ask_until_up("hello").status, 0);
        const auto begin = Clock::now();
        EXPECT_EQ(ask("die", 20s).status, ECONNRESET);
        EXPECT_LT(Clock::now() - begin, 10s);
        EXPECT_EQ(mortal.wait(), 128 + SIGKILL);
    }
}

} // namespace
} // namespace xpon::ipc
