#include "ipc/zmq_socket.hpp"
#include "tests/unit/platform/ipc/peer_thread.hpp"
#include "xpon/core/call_budget.hpp"

#include <atomic>
#include <cerrno>
#include <latch>

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

TEST_F(IpcTest, ACallEndsWithItsCallersTimeAndThePeerIsNoneTheWorse) {
    std::latch released(1);
    const PeerThread server(peer, [&released](const ServerRequest& request) {
        released.wait();
        return PeerThread::echo_answer(request);
    });
    ASSERT_TRUE(endpoint->connect(peer));
    {
        const std::atomic<bool> goes_on{true};
        const core::CallBudget budget(30ms, goes_on);
        EXPECT_EQ(ask("at work", 60s).status, ETIMEDOUT);
        EXPECT_EQ(ask("nobody waits for this", 60s).status, ETIMEDOUT);
    }
    released.count_down();
    EXPECT_EQ(ask("asked again").status, 0);
    // What nobody waited for when its turn came was not done.
    EXPECT_THAT(server.requests(), ElementsAre("at work", "asked again"));
    EXPECT_TRUE(logger->lines.empty());
}

/// How many messages of 1 MiB one side takes from a socket of its own before nothing goes any more.
int most_sent(zmq::socket_t& socket, zmq::message_t* receiver) {
    const std::vector<std::byte> message(1024 * 1024);
    int count = 0;
    const auto send_one = [&] {
        zmq::message_t name;
        if (receiver != nullptr) {
            name.copy(*receiver);
            if (!socket.send(name, zmq::send_flags::dontwait | zmq::send_flags::sndmore)) {
                return false;
            }
        }
        return send(socket, message);
    };
    while (count < 1000 && eventually(send_one, 200ms)) {
        ++count;
    }
    return count;
}

TEST_F(IpcTest, WhoDoesNotReadIsSentFewMessages) {
    root.write("run/ipc/.keep", "");
    const auto name = "ipc://" + root.path().string() + "/run/ipc/two";
    zmq::context_t context;
    auto server = make_socket(context, zmq::socket_type::router);
    server.set(zmq::sockopt::router_mandatory, true); // it tells when it would drop a message
    server.bind(name);
    auto client = make_socket(context, zmq::socket_type::dealer);
    client.connect(name);
    const int to_server = most_sent(client, nullptr);
    EXPECT_GE(to_server, 2) << "a question and what else is under way";
    EXPECT_LE(to_server, 3 * max_message_bytes / max_request_bytes) << "no more memory than a few answers take";
    zmq::message_t connection;
    ASSERT_TRUE(server.recv(connection));
    const int to_client = most_sent(server, &connection);
    EXPECT_GE(to_client, 2);
    EXPECT_LE(to_client, 8);
}

TEST_F(IpcTest, APeerThatIsGoneFailsAtOnceAndARestartedOneSeesNothingOfThePast) {
    auto server = std::make_unique<PeerThread>();
    ASSERT_TRUE(endpoint->connect(peer));
    ASSERT_EQ(ask("first life").status, 0);
    const auto is_there = [&] { return endpoint->connect(peer).error().code == core::Error::Already; };
    EXPECT_TRUE(is_there());
    server.reset();
    EXPECT_TRUE(eventually([&] { return ask("stale").status == ECONNREFUSED; }));
    EXPECT_FALSE(is_there());
    endpoint->raw()->notify_all(echo, bytes_of("stale"));

    server = std::make_unique<PeerThread>();
    EXPECT_EQ(ask_until_up("second life").status, 0);
    EXPECT_TRUE(is_there());
    EXPECT_THAT(server->requests(), ElementsAre("second life"));
    EXPECT_TRUE(server->notices().empty());
    EXPECT_EQ(logger->lines.size(), 2U) << "down and up";
}

} // namespace
} // namespace xpon::ipc
