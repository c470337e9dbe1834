#include "tests/unit/platform/ipc/peer_thread.hpp"

#include <cerrno>
#include <csignal>

#include <sys/wait.h>

#include <unistd.h>

namespace xpon::ipc {
namespace {

using namespace std::chrono_literals;

/// A peer in a process of its own that dies by SIGKILL when it is asked.
pid_t start_mortal_peer() {
    const auto pid = fork();
    if (pid == 0) {
        const PeerThread server(peer, [](const ServerRequest& request) {
            if (text_of(request.payload) == "die") {
                kill(getpid(), SIGKILL);
            }
            return PeerThread::echo_answer(request);
        });
        for (;;) {
            pause();
        }
    }
    return pid;
}

TEST_F(IpcTest, APeerKilledWhileItIsAskedEndsTheRequest) {
    for (int life = 0; life < 2; ++life) {
        const auto pid = start_mortal_peer();
        if (life == 0) {
            ASSERT_TRUE(endpoint->connect(peer));
        }
        ASSERT_EQ(ask_until_up("hello").status, 0);
        const auto begin = Clock::now();
        EXPECT_EQ(ask("die", 20s).status, ECONNRESET);
        EXPECT_LT(Clock::now() - begin, 10s);
        waitpid(pid, nullptr, 0);
    }
}

} // namespace
} // namespace xpon::ipc
