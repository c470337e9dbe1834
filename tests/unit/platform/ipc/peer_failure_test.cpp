#include "tests/unit/platform/ipc/peer_thread.hpp"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <latch>

#include <sys/time.h>
#include <sys/wait.h>

#include <unistd.h>

namespace xpon::ipc {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::HasSubstr;

TEST_F(IpcTest, APeerThatTimedOutFailsAtOnceUntilItAnswersAgain) {
    std::latch released(1);
    const PeerThread server(peer, [&released](const ServerRequest& request) {
        released.wait();
        return PeerThread::echo_answer(request);
    });
    ASSERT_TRUE(endpoint->connect(peer));
    EXPECT_EQ(ask("slow", 30ms).status, ETIMEDOUT);
    EXPECT_EQ(ask("refused").status, EHOSTDOWN);
    released.count_down();
    // The late answer to "slow" is on its way as well and must not be taken for this one's.
    EXPECT_EQ(text_of(ask_until_up("again").payload), "again");
    EXPECT_EQ(text_of(ask("and again").payload), "and again");
    EXPECT_THAT(server.requests(), ElementsAre("slow", "again", "and again"));
    EXPECT_THAT(logger->texts(),
                ElementsAre(HasSubstr("Peer 0x0019fffe is down: no answer in time"), "Peer 0x0019fffe is up again"));
}

TEST_F(IpcTest, APeerThatIsGoneFailsAtOnceAndARestartedOneSeesNothingOfThePast) {
    auto server = std::make_unique<PeerThread>();
    ASSERT_TRUE(endpoint->connect(peer));
    ASSERT_EQ(ask("first life").status, 0);
    server.reset();
    EXPECT_TRUE(eventually([&] { return ask("stale").status == ECONNREFUSED; }));
    endpoint->raw()->notify_all(echo, bytes_of("stale"));

    server = std::make_unique<PeerThread>();
    EXPECT_EQ(ask_until_up("second life").status, 0);
    EXPECT_THAT(server->requests(), ElementsAre("second life"));
    EXPECT_TRUE(server->notices().empty());
    EXPECT_EQ(logger->lines.size(), 2U) << "down and up";
}

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

std::atomic<int> signals = 0;

TEST_F(IpcTest, SignalsDoNotDisturbARequest) {
    const PeerThread server(peer, [](const ServerRequest& request) {
        eventually([] { return signals > 20; });
        return PeerThread::echo_answer(request);
    });
    ASSERT_TRUE(endpoint->connect(peer));
    struct sigaction action{};
    action.sa_handler = [](int) { ++signals; };
    ASSERT_EQ(sigaction(SIGALRM, &action, nullptr), 0);
    const itimerval every_millisecond{.it_interval = {0, 1000}, .it_value = {0, 1000}};
    setitimer(ITIMER_REAL, &every_millisecond, nullptr);
    EXPECT_EQ(ask("a").status, 0);
    const itimerval never{};
    setitimer(ITIMER_REAL, &never, nullptr);
    EXPECT_GT(signals, 20);
}

} // namespace
} // namespace xpon::ipc
