#include "api_service/poller.hpp"

#include "tests/support/recording_logger.hpp"
#include "tests/support/stream_client.hpp"
#include "tests/support/temporary_folder.hpp"

#include <csignal>
#include <string>

#include <sys/resource.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace xpon::api_service {
namespace {

using namespace std::chrono_literals;
using namespace std::string_literals;

class PollerTest : public testing::Test {
protected:
    test::StreamClient connect() {
        auto client = test::StreamClient::to_unix(folder.path() + "/api");
        EXPECT_TRUE(poller.poll(1000ms).value().empty()) << "a new client is read in the next call";
        return client;
    }

    test::TemporaryFolder folder;
    std::shared_ptr<test::RecordingLogger> logger = std::make_shared<test::RecordingLogger>();
    Poller poller{logger, std::make_unique<ListenerSocket>(UnixEndpoint{folder.path() + "/api"})};
};

TEST_F(PollerTest, ReportsClientsThatReceivedAFrame) {
    auto first = connect();
    auto second = connect();
    second.send("half");
    EXPECT_TRUE(poller.poll(1000ms).value().empty());
    second.send("\0"s);
    first.send("one\0two\0"s);
    const auto ready = poller.poll(1000ms).value();
    ASSERT_EQ(ready.size(), 2U);
    EXPECT_LT(ready[0]->get_fd(), ready[1]->get_fd());
    EXPECT_EQ(ready[0]->get_frame().value(), "one");
    EXPECT_EQ(ready[1]->get_frame().value(), "half");
    // "two" waits until its client sends again.
    EXPECT_TRUE(poller.poll(0ms).value().empty());
    first.send("x");
    EXPECT_EQ(poller.poll(1000ms).value().at(0)->get_frame().value(), "two");
}

TEST_F(PollerTest, ClosesAClientOnceAlsoWhileSomebodyHoldsIt) {
    auto client = connect();
    client.send("frame\0"s);
    auto held = poller.poll(1000ms).value();
    const int fd = held.at(0)->get_fd();
    client.close();
    EXPECT_TRUE(poller.poll(1000ms).value().empty());
    EXPECT_TRUE(logger->contains("Closing socket " + std::to_string(fd)));

    auto other = connect();
    held.clear(); // the last owner lets go: must not close a number that somebody else has by now
    other.send("alive\0"s);
    EXPECT_EQ(poller.poll(1000ms).value().size(), 1U);
}

TEST_F(PollerTest, ASignalEndsTheWaitWithoutAnError) {
    struct sigaction action {};
    action.sa_handler = [](int) {};
    struct sigaction before {};
    sigaction(SIGALRM, &action, &before);
    const itimerval soon{.it_interval = {}, .it_value = {.tv_sec = 0, .tv_usec = 1000}};
    setitimer(ITIMER_REAL, &soon, nullptr);
    EXPECT_TRUE(poller.poll(60s).value().empty());
    sigaction(SIGALRM, &before, nullptr);
}

TEST_F(PollerTest, OutOfDescriptorsItNeitherFailsNorSpins) {
    auto client = connect();
    rlimit before{};
    getrlimit(RLIMIT_NOFILE, &before);
    auto waiting = test::StreamClient::to_unix(folder.path() + "/api");
    const rlimit none{.rlim_cur = 0, .rlim_max = before.rlim_max};
    setrlimit(RLIMIT_NOFILE, &none);
    // poll() itself refuses more entries than the limit, so only accepting is tried.
    const auto refused = ListenerSocket(*this);
    setrlimit(RLIMIT_NOFILE, &before);
}

} // namespace
} // namespace xpon::api_service
