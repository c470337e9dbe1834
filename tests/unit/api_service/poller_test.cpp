#include "api_service/poller.hpp"
#include "tests/support/recording_logger.hpp"
#include "tests/support/temporary_olt_root.hpp"
#include "xpon/client/connection.hpp"

#include <optional>
#include <string>
#include <vector>

#include <sys/eventfd.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace xpon::api_service {
namespace {

using namespace std::chrono_literals;
using namespace std::string_literals;

class PollerTest : public testing::Test {
protected:
    client::Connection connect() {
        auto client = client::Connection::open(client::UnixEndpoint{folder.path().string() + "/api"}).value();
        EXPECT_TRUE(poller.poll(1000ms).value().empty()) << "a new client is read in the next call";
        return client;
    }

    static void send(client::Connection& client, std::string_view bytes) {
        EXPECT_TRUE(client.send_bytes(bytes, std::chrono::steady_clock::now() + 10s));
    }

    test::TemporaryOltRoot folder;
    std::shared_ptr<test::RecordingLogger> logger = std::make_shared<test::RecordingLogger>();
    Poller poller{logger, std::make_unique<ListenerSocket>(UnixEndpoint{folder.path().string() + "/api"})};
};

TEST_F(PollerTest, ReportsClientsThatReceivedAFrame) {
    auto first = connect();
    auto second = connect();
    send(second, "half");
    EXPECT_TRUE(poller.poll(1000ms).value().empty());
    send(second, "\0"s);
    send(first, "one\0\0\0two\0"s);
    const auto ready = poller.poll(1000ms).value();
    ASSERT_EQ(ready.size(), 2U);
    EXPECT_LT(ready[0]->get_fd(), ready[1]->get_fd());
    EXPECT_EQ(ready[0]->get_frame().value(), "one");
    EXPECT_EQ(ready[1]->get_frame().value(), "half");
    // "two" waits until its client sends again.
    EXPECT_TRUE(poller.poll(0ms).value().empty());
    send(first, "x");
    EXPECT_EQ(poller.poll(1000ms).value().at(0)->get_frame().value(), "two");
}

TEST_F(PollerTest, AcceptsACrowdAtOnceAndReturnsItInPieces) {
    std::vector<client::Connection> crowd;
    while (crowd.size() < IPoller::most_returned + 4) {
        crowd.push_back(client::Connection::open(client::UnixEndpoint{folder.path().string() + "/api"}).value());
    }
    EXPECT_TRUE(poller.poll(1000ms).value().empty());
    for (auto& client : crowd) {
        send(client, "frame\0"s);
    }
    const auto first = poller.poll(1000ms).value();
    const auto rest = poller.poll(0ms).value();
    EXPECT_EQ(first.size(), IPoller::most_returned);
    ASSERT_EQ(rest.size(), 4U);
    EXPECT_LT(first.back()->get_fd(), rest.front()->get_fd());
    send(crowd.front(), "frame\0"s);
    EXPECT_EQ(poller.poll(1000ms).value().at(0), first.front()) << "a new round";
}

TEST_F(PollerTest, AnswersABrowserOnceAndTakesNoCommandFromItsPage) {
    auto browser = connect();
    send(browser, "POST / HTTP/1.1\r\nHost: localhost:9999\r\n\r\n\0{\"path\":\"command.reboot\"}\0"s);
    const auto client = poller.poll(1000ms).value().at(0);
    EXPECT_EQ(client->get_frames_left(), 1);
    EXPECT_TRUE(client->send_frame("refused"));
    EXPECT_TRUE(poller.poll(1000ms).value().empty());
    EXPECT_EQ(browser.receive_frame(std::chrono::steady_clock::now() + 10s).value(), "refused");
    EXPECT_FALSE(browser.receive_frame(std::chrono::steady_clock::now() + 10s)) << "closed";

    auto other = connect();
    for (const auto* const frame : {R"({"data":"GET / HTTP/1.1"})", "GET / HTTP/1.1"}) { // a JSON text, a later frame
        send(other, frame + "\0"s);
        const auto ready = poller.poll(1000ms).value().at(0);
        EXPECT_EQ(ready->get_frame().value(), frame);
        EXPECT_TRUE(ready->send_frame("answer"));
        EXPECT_FALSE(ready->is_shut_down()) << frame;
        EXPECT_TRUE(other.receive_frame(std::chrono::steady_clock::now() + 10s));
    }
}

TEST_F(PollerTest, TakesAFrameOfAnySizeButNotAnyNumberOfThem) {
    const auto pieces = 2 * ClientSocket::waiting_frames_budget / ClientSocket::get_buffer_size();
    const auto closed = testing::Contains(testing::HasSubstr("Error: Overflow."));
    auto large = connect();
    for (std::size_t piece = 0; piece < pieces; ++piece) {
        send(large, std::string(ClientSocket::get_buffer_size(), 'a'));
        EXPECT_TRUE(poller.poll(1000ms).value().empty());
    }
    send(large, "\0"s);
    EXPECT_EQ(poller.poll(1000ms).value().at(0)->get_frame().value().size(), pieces * ClientSocket::get_buffer_size());
    EXPECT_THAT(logger->texts(), testing::Not(closed));

    auto many = connect();
    std::string frames;
    while (frames.size() < ClientSocket::get_buffer_size()) {
        frames += "x\0"s;
    }
    std::size_t sent = 0;
    for (; sent < pieces && !testing::Value(logger->texts(), closed); ++sent) {
        send(many, frames);
        EXPECT_TRUE(poller.poll(1000ms));
    }
    EXPECT_LT(sent, pieces) << "frames of one byte take more than they hold";
}

TEST_F(PollerTest, ClosesAClientOnceAlsoWhileSomebodyHoldsIt) {
    std::optional client = connect();
    send(*client, "frame\0"s);
    auto held = poller.poll(1000ms).value();
    const int fd = held.at(0)->get_fd();
    client.reset();
    EXPECT_TRUE(poller.poll(1000ms).value().empty());
    EXPECT_TRUE(logger->contains("Closing socket " + std::to_string(fd)));

    auto other = connect();
    held.clear(); // the last owner lets go: must not close a number that somebody else has by now
    send(other, "alive\0"s);
    EXPECT_EQ(poller.poll(1000ms).value().size(), 1U);
}

TEST(PollerOutOfDescriptors, NeitherFailsNorSpins) {
    /// Always readable, never able to accept, as when the process has no descriptor left.
    class ExhaustedListener : public IListenerSocket {
    public:
        explicit ExhaustedListener(int& attempts) : attempts_(attempts) {}
        core::Result<std::shared_ptr<IClientSocket>> accept() override {
            ++attempts_;
            return core::ErrorPayload(core::Error::CommonError, "accept() failed: 24");
        }
        [[nodiscard]] int get_fd() const override {
            return readable_.get();
        }

    private:
        core::UniqueFd readable_{::eventfd(1, 0)};
        int& attempts_;
    };
    int attempts = 0;
    const auto logger = std::make_shared<test::RecordingLogger>();
    Poller poller(logger, std::make_unique<ExhaustedListener>(attempts));
    for (int turn = 0; turn < 100; ++turn) {
        EXPECT_TRUE(poller.poll(0ms).value().empty());
    }
    EXPECT_EQ(attempts, 1);
    EXPECT_TRUE(logger->contains("Error: CommonError. Message: accept() failed: 24."));
}

} // namespace
} // namespace xpon::api_service
