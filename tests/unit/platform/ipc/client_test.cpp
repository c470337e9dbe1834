#include "tests/unit/platform/ipc/peer_thread.hpp"

#include <cerrno>
#include <latch>
#include <stdexcept>
#include <utility>

namespace xpon::ipc {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;

TEST_F(IpcTest, APeersFailureIsItsAnswerNotItsDeath) {
    const PeerThread server(peer, [](const ServerRequest& request) -> ServerAnswer {
        return text_of(request.payload) == "bad" ? throw std::runtime_error("fault") : ServerAnswer{ECONNREFUSED, {}};
    });
    ASSERT_TRUE(endpoint->connect(peer));
    for (const auto& [text, status] : {std::pair("a", ECONNREFUSED), {"bad", EIO}, {"b", ECONNREFUSED}}) {
        EXPECT_EQ(ask(text).status, status);
    }
    EXPECT_THAT(server.requests(), ElementsAre("a", "bad", "b"));
    EXPECT_TRUE(logger->lines.empty());
}

TEST_F(IpcTest, AllPeersAreAskedAtOnceAndOnlyANoCounts) {
    constexpr Address silent{0x07fffe};
    constexpr Address refusing{0x08fffe};
    constexpr Address ignorant{0x09fffe};
    constexpr Address going_down{0x06fffe};
    std::latch released(1);
    const PeerThread silent_server(silent, [&](const ServerRequest& request) {
        released.wait();
        return PeerThread::echo_answer(request);
    });
    const auto status = [](int value) { return [value](const ServerRequest&) { return ServerAnswer{value, {}}; }; };
    const PeerThread ignorant_server(ignorant, status(EOPNOTSUPP));
    const PeerThread going_server(going_down, status(ECONNREFUSED));
    const PeerThread willing_server(peer);
    auto refusing_server = std::make_unique<PeerThread>(refusing, status(EPERM));
    for (const auto address : {silent, refusing, ignorant, going_down, peer}) {
        ASSERT_TRUE(endpoint->connect(address));
    }
    const auto ask_all = [&](std::string_view text, std::chrono::milliseconds deadline) {
        return endpoint->raw()->ask_all(echo, bytes_of(text), deadline);
    };
    EXPECT_EQ(ask_all("all", 50ms), refusing);
    // The silent one owes an answer, so nobody waits for it again.
    refusing_server.reset();
    EXPECT_TRUE(eventually([&] { return !ask_all("again", 10s); }));
    EXPECT_THAT(willing_server.requests(), testing::Contains("all"));
    EXPECT_THAT(silent_server.requests(), ElementsAre("all"));
    released.count_down();
}

TEST_F(IpcTest, AnAddressIsServedOnceAndALeftOverSocketIsReplaced) {
    root.write("run/ipc/0019fffe", "left by a killed process");
    auto server = std::make_unique<PeerThread>();
    EXPECT_THROW(PeerThread(), std::runtime_error);
    ASSERT_TRUE(endpoint->connect(peer));
    EXPECT_EQ(ask("a").status, 0);
    const auto permissions = std::filesystem::status(root.path() / "run/ipc/0019fffe").permissions();
    EXPECT_EQ(permissions & std::filesystem::perms::mask, std::filesystem::perms(0600));
    server.reset();
    EXPECT_TRUE(std::filesystem::is_empty(root.path() / "run/ipc"));
}

TEST_F(IpcTest, ANoticeReachesEveryPeerThatIsThereAndWaitsForNone) {
    const PeerThread first;
    auto second = std::make_unique<PeerThread>(Address{0x09fffe});
    ASSERT_TRUE(endpoint->connect(peer));
    ASSERT_TRUE(endpoint->connect(Address{0x09fffe}));
    const auto notify = [&](int number) { endpoint->raw()->notify_all(echo, bytes_of(std::to_string(number))); };
    notify(0);
    EXPECT_TRUE(eventually([&] { return first.notices().size() == 1 && second->notices().size() == 1; }));
    second.reset();
    for (int number = 1; number < 1000; ++number) {
        notify(number);
    }
    EXPECT_TRUE(eventually([&] { return first.notices().size() > 1; }));
    EXPECT_EQ(ask("still there").status, 0);
    EXPECT_EQ(first.notices().at(1), "1");
}

TEST_F(IpcTest, APayloadBeyondTheLimitIsRefused) {
    const PeerThread server(peer, [](const ServerRequest&) {
        return ServerAnswer{0, std::vector<std::byte>(static_cast<std::size_t>(max_message_bytes))};
    });
    ASSERT_TRUE(endpoint->connect(peer));
    EXPECT_EQ(ask(std::string(static_cast<std::size_t>(max_request_bytes), 'x')).status, EMSGSIZE);
    EXPECT_EQ(ask("short").status, EMSGSIZE);
}

} // namespace
} // namespace xpon::ipc
