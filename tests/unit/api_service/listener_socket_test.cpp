#include "api_service/listener_socket.hpp"

#include "tests/support/stream_client.hpp"
#include "tests/support/temporary_folder.hpp"

#include <cerrno>
#include <stdexcept>
#include <string>
#include <thread>

#include <sys/stat.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace xpon::api_service {
namespace {

std::string failure_to_open(const Endpoint& endpoint) {
    try {
        const ListenerSocket listener(endpoint);
        return "opened";
    } catch (const std::runtime_error& error) {
        return error.what();
    }
}

TEST(ListenerSocket, NamesTheStepAndErrnoOfAFailure) {
    const test::TemporaryFolder folder;
    const UnixEndpoint taken{folder.path() + "/api"};
    const ListenerSocket listener(taken);
    EXPECT_EQ(failure_to_open(taken), "bind() failed: " + std::to_string(EADDRINUSE));
    EXPECT_EQ(failure_to_open(UnixEndpoint{folder.path() + "/none/api"}), "bind() failed: " + std::to_string(ENOENT));
}

TEST(ListenerSocket, CutsAPathThatIsTooLong) {
    const test::TemporaryFolder folder;
    const auto path = folder.path() + "/" + std::string(200, 'x');
    const ListenerSocket listener(UnixEndpoint{path});
    EXPECT_TRUE(test::StreamClient::to_unix(path.substr(0, 107)).connected());
    struct stat status {};
    ASSERT_EQ(::stat(path.substr(0, 107).c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0777U) << "every local user may connect";
}

TEST(ListenerSocket, AcceptsWhatIsPendingOnly) {
    const test::TemporaryFolder folder;
    ListenerSocket listener(UnixEndpoint{folder.path() + "/api"});
    EXPECT_FALSE(listener.accept()) << "must not wait";
    const auto peer = test::StreamClient::to_unix(folder.path() + "/api");
    EXPECT_GE(listener.accept().value()->get_fd(), 0);
}

TEST(ListenerSocket, AnAnswerOfTensOfMegabytesLeavesInOneSend) {
    const test::TemporaryFolder folder;
    ListenerSocket listener(UnixEndpoint{folder.path() + "/api"});
    auto peer = test::StreamClient::to_unix(folder.path() + "/api");
    const auto client = listener.accept().value();
    const std::string answer(24 * 1024 * 1024, 'a');
    const auto sent = client->send_frame(answer);
    if (!sent && ::geteuid() != 0) {
        GTEST_SKIP() << "forcing the size of a send buffer needs CAP_NET_ADMIN";
    }
    EXPECT_TRUE(sent);
    EXPECT_EQ(peer.receive_frame().size(), answer.size());
}

} // namespace
} // namespace xpon::api_service
