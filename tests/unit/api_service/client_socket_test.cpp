#include "api_service/client_socket.hpp"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <deque>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace xpon::api_service {
namespace {

using namespace std::string_literals;
using testing::ElementsAre;

/// A client whose descriptor is played by two queues.
class ScriptedClient : public ClientSocket {
public:
    ScriptedClient() : ClientSocket(core::UniqueFd()) {}

    std::deque<std::string> arriving;
    int failure = EAGAIN; ///< errno once nothing is left to arrive; 0 = the peer has closed
    std::string sent;
    std::size_t room = std::string::npos; ///< what the send buffer still takes

    std::vector<std::string> take_frames() {
        std::vector<std::string> frames;
        while (get_frames_left() > 0) {
            frames.push_back(get_frame().value());
        }
        return frames;
    }

protected:
    ssize_t do_recv(void* data, std::size_t size) override {
        if (arriving.empty()) {
            errno = failure;
            return failure == 0 ? 0 : -1;
        }
        const auto piece = arriving.front();
        arriving.pop_front();
        EXPECT_LE(piece.size(), size);
        std::memcpy(data, piece.data(), piece.size());
        return static_cast<ssize_t>(piece.size());
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

TEST(ClientSocket, CutsTheStreamIntoFrames) {
    ScriptedClient client;
    client.arriving = {"one\0two\0thr"s, "ee"s, "\0\0\0four\0"s, "rest"s};
    std::vector<std::vector<std::string>> frames;
    for (int i = 0; i < 4; ++i) {
        ASSERT_TRUE(client.read_data());
        frames.push_back(client.take_frames());
    }
    EXPECT_THAT(frames,
                ElementsAre(ElementsAre("one", "two"), ElementsAre(), ElementsAre("three", "four"), ElementsAre()));
}

TEST(ClientSocket, TellsAnIdleConnectionFromABrokenOne) {
    ScriptedClient client;
    EXPECT_TRUE(client.read_data()) << "nothing received";
    EXPECT_EQ(errno, 0);
    client.failure = ECONNRESET;
    EXPECT_EQ(client.read_data().error().code, core::Error::CommonError);
    client.failure = 0;
    EXPECT_EQ(client.read_data().error().code, core::Error::CommonError) << "closed by the peer";
}

TEST(ClientSocket, EndsEveryFrameWithANulAndNeverContinuesAShortOne) {
    ScriptedClient client;
    EXPECT_TRUE(client.send_frame("{}"));
    EXPECT_EQ(client.sent, "{}\0"s);

    client.sent.clear();
    client.room = 3;
    EXPECT_EQ(client.send_frame("12345").error().code, core::Error::CommonError);
    EXPECT_EQ(client.sent, "123");

    client.room = 5;
    EXPECT_FALSE(client.send_frame("12345")) << "no room for the NUL";
}

} // namespace
} // namespace xpon::api_service
