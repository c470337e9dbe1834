#include "api_service/client_socket.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <string>
#include <string_view>

#include <sys/socket.h>

#include <gtest/gtest.h>

namespace xpon::api_service {
namespace {

using namespace std::string_literals;

/// A client that receives nothing and sends what there is room for.
class ScriptedClient : public ClientSocket {
public:
    ScriptedClient() : ClientSocket(core::UniqueFd()) {}

    int failure = EAGAIN; ///< errno of receiving; 0 = the peer has closed
    std::string sent;
    std::size_t room = std::string::npos; ///< what the send buffer still takes

protected:
    ssize_t do_recv(void*, std::size_t) override {
        errno = failure;
        return failure == 0 ? 0 : -1;
    }

    ssize_t do_send(const void* data, std::size_t size) override {
        const auto taken = std::min(size, room);
        if (taken == 0 && size != 0) {
            errno = EAGAIN;
            return -1;
        }
        room -= taken;
        sent.append(static_cast<const char*>(data), taken);
        return static_cast<ssize_t>(taken);
    }
};

TEST(ClientSocket, TellsAnIdleConnectionFromABrokenOne) {
    ScriptedClient client;
    EXPECT_TRUE(client.read_data()) << "nothing received";
    EXPECT_EQ(errno, 0);
    client.failure = ECONNRESET;
    EXPECT_EQ(client.read_data().error().code, core::Error::CommonError);
    client.failure = 0;
    EXPECT_EQ(client.read_data().error().code, core::Error::CommonError) << "closed by the peer";
}

TEST(ClientSocket, EndsEveryFrameWithANulAndSendsNothingBehindACutOne) {
    for (const std::size_t room : {6U, 5U, 3U, 0U}) {
        ScriptedClient client;
        client.room = room;
        EXPECT_EQ(static_cast<bool>(client.send_frame("12345")), room == 6U);
        EXPECT_EQ(client.sent, "12345\0"s.substr(0, room));
        EXPECT_EQ(client.is_shut_down(), room == 5U || room == 3U) << room;
    }
}

TEST(ClientSocket, SendsTextAndNulTogether) {
    std::array<int, 2> ends{};
    ASSERT_EQ(::socketpair(AF_UNIX, SOCK_SEQPACKET, 0, ends.data()), 0); // keeps what was sent at a time apart
    const core::UniqueFd peer(ends[1]);
    ClientSocket client{core::UniqueFd(ends[0])};
    for (const auto& text : {"first"s, ""s, std::string(1023, 'a'), std::string(1024, 'b')}) {
        ASSERT_TRUE(client.send_frame(text));
        std::array<char, 2048> received{};
        const auto count = ::recv(peer.get(), received.data(), received.size(), MSG_DONTWAIT);
        EXPECT_EQ(std::string_view(received.data(), static_cast<std::size_t>(count)), text + '\0');
    }
}

} // namespace
} // namespace xpon::api_service
