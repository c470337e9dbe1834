#include "api_service/local_peer.hpp"
#include "xpon/core/unique_fd.hpp"

#include <array>

#include <sys/socket.h>

#include <gtest/gtest.h>
#include <netinet/in.h>
#include <unistd.h>

namespace xpon::api_service {
namespace {

struct Pair {
    core::UniqueFd client;
    core::UniqueFd server;
};

Pair connect_over_loopback() {
    const core::UniqueFd listener(::socket(AF_INET, SOCK_STREAM, 0));
    sockaddr_in address{.sin_family = AF_INET, .sin_port = 0, .sin_addr = {htonl(INADDR_LOOPBACK)}, .sin_zero = {}};
    socklen_t size = sizeof(address);
    auto* const any = reinterpret_cast<sockaddr*>(&address);
    Pair pair{.client = core::UniqueFd(::socket(AF_INET, SOCK_STREAM, 0)), .server = {}};
    EXPECT_TRUE(::bind(listener.get(), any, size) == 0 && ::listen(listener.get(), 1) == 0 &&
                ::getsockname(listener.get(), any, &size) == 0 && ::connect(pair.client.get(), any, size) == 0);
    pair.server = core::UniqueFd(::accept(listener.get(), nullptr, nullptr));
    return pair;
}

TEST(LocalPeer, IsTheUserAndTheProcessAtTheOtherEnd) {
    auto pair = connect_over_loopback();
    const auto peer = find_local_peer(pair.server.get());
    ASSERT_TRUE(peer);
    EXPECT_EQ(peer->uid, getuid());
    EXPECT_EQ(find_process_of(*peer), getpid());
    {
        const core::UniqueFd closed = std::move(pair.client);
    }
    EXPECT_FALSE(find_local_peer(pair.server.get())) << "nobody is there any more, least of all uid 0";
}

TEST(LocalPeer, IsUnknownForOtherSockets) {
    std::array<int, 2> ends{};
    ASSERT_EQ(::socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data()), 0);
    const core::UniqueFd first(ends[0]);
    const core::UniqueFd second(ends[1]);
    EXPECT_FALSE(find_local_peer(first.get()));
    EXPECT_FALSE(find_local_peer(-1));
}

} // namespace
} // namespace xpon::api_service
