#pragma once

#include "ipc/ipc_handle.hpp"
#include "ipc/zmq_ipc.hpp"
#include "tests/support/eventually.hpp"
#include "tests/support/recording_logger.hpp"
#include "tests/support/temporary_olt_root.hpp"
#include "xpon/peer_side/server.hpp"

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include <gmock/gmock.h>

namespace xpon::ipc {

using test::eventually;

inline constexpr Address own{0x1bffff};
inline constexpr Address peer{0x19fffe};
inline constexpr std::uint16_t echo = 100;

std::span<const std::byte> bytes_of(std::string_view text);
std::string text_of(std::span<const std::byte> bytes);

/// A peer daemon in a thread of this process, or several that are one process to their clients: answers with `answer`,
/// keeps what it was sent. Gone with the object.
class PeerThread : private IPeerHandler {
public:
    using Answer = std::function<ServerAnswer(const ServerRequest&)>;
    explicit PeerThread(Address address = peer, Answer answer = echo_answer);
    PeerThread(const std::vector<Address>& addresses, Answer answer);
    ~PeerThread() override;

    /// One of several is soon served no more.
    void end(Address address) {
        ending_ = address;
    }

    static ServerAnswer echo_answer(const ServerRequest& request);
    [[nodiscard]] std::vector<std::string> requests() const;
    [[nodiscard]] std::vector<std::string> notices() const;

private:
    ServerAnswer handle(const ServerRequest& request) override;
    void notice(const ServerRequest& request) override;

    Answer answer_;
    std::atomic<Address> ending_{};
    mutable std::mutex mutex_;
    std::vector<std::string> requests_;
    std::vector<std::string> notices_;
    std::unique_ptr<IServer> server_;
    std::jthread thread_;
};

/// An endpoint below an OLT_ROOT of its own.
class IpcTest : public testing::Test {
protected:
    IpcTest();

    std::shared_ptr<IIpc> make_endpoint(Timing timing = {}) const;
    Ipc::Reply ask(std::string_view text, std::chrono::milliseconds deadline = std::chrono::seconds(10)) const;
    /// Asks until the peer answers, for a limited time.
    Ipc::Reply ask_until_up(std::string_view text) const;

    test::TemporaryOltRoot root;
    std::shared_ptr<test::RecordingLogger> logger = std::make_shared<test::RecordingLogger>();
    std::shared_ptr<IIpc> endpoint;
};

} // namespace xpon::ipc
