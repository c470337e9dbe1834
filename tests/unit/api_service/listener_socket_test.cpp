#include "api_service/listener_socket.hpp"
#include "tests/support/temporary_olt_root.hpp"
#include "xpon/client/connection.hpp"

#include <cerrno>
#include <chrono>
#include <stdexcept>
#include <string>

#include <sys/stat.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace xpon::api_service {
namespace {

core::Result<client::Connection> connect_to(const std::string& path) {
    return client::Connection::open(client::UnixEndpoint{path});
}

TEST(ListenerSocket, CutsAPathThatIsTooLong) {
    const test::TemporaryOltRoot folder;
    const auto path = folder.path().string() + "/" + std::string(200, 'x');
    const ListenerSocket listener(UnixEndpoint{path});
    EXPECT_TRUE(connect_to(path.substr(0, 107)));
    struct stat status{};
    ASSERT_EQ(::stat(path.substr(0, 107).c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0777U) << "every local user may connect";
}

TEST(ListenerSocket, AnAnswerOfTensOfMegabytesLeavesInOneSend) {
    const test::TemporaryOltRoot folder;
    ListenerSocket listener(UnixEndpoint{folder.path().string() + "/api"});
    EXPECT_FALSE(listener.accept()) << "must not wait";
    auto peer = connect_to(folder.path().string() + "/api").value();
    const auto client = listener.accept().value();
    const std::string answer(24 * 1024 * 1024, 'a');
    const auto sent = client->send_frame(answer);
    if (!sent && ::geteuid() != 0) {
        GTEST_SKIP() << "forcing the size of a send buffer needs CAP_NET_ADMIN";
    }
    EXPECT_TRUE(sent);
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    EXPECT_EQ(peer.receive_frame(deadline).value(), answer);
}

} // namespace
} // namespace xpon::api_service
