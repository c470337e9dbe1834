#include "tests/unit/platform/ipc/peer_process.hpp"

#include <cerrno>
#include <stdexcept>

namespace xpon::ipc {
namespace {

using core::Error;

TEST_F(IpcTest, OneProcessServesManyPeersEachUnderItsOwnAddress) {
    class Handler : public IPeerHandler {
        ServerAnswer handle(const ServerRequest& request) override {
            const auto address = std::as_bytes(std::span(&request.peer, 1));
            return {0, {address.begin(), address.end()}};
        }
        void notice(const ServerRequest&) override {}
    } handler;
    const auto server = make_zmq_server(logger).value();
    static constexpr Address addresses[] = {{0x19fffe}, {0x09fffe}, {0x0afffe}};
    for (const auto address : addresses) {
        ASSERT_TRUE(server->bind(address, handler));
    }
    std::jthread thread([&server](const std::stop_token& stop) {
        while (!stop.stop_requested() && server->serve(std::chrono::milliseconds(2))) {
        }
    });
    for (const auto address : addresses) {
        ASSERT_TRUE(endpoint->connect(address));
    }
    for (const auto address : addresses) {
        const auto reply = endpoint->raw()->request(address, echo, {}, Ipc::default_deadline);
        EXPECT_EQ(text_of(reply.payload), text_of(std::as_bytes(std::span(&address, 1))));
    }
}

TEST_F(IpcTest, AHandlerThatThrowsAnswersEio) {
    const PeerThread server(peer, [](const ServerRequest& request) -> ServerAnswer {
        return text_of(request.payload) == "bad" ? throw std::runtime_error("fault") : ServerAnswer{};
    });
    ASSERT_TRUE(endpoint->connect(peer));
    EXPECT_EQ(ask("bad").status, EIO);
    EXPECT_EQ(ask("good").status, 0);
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

} // namespace
} // namespace xpon::ipc
