#include "ipc/served_peer.hpp"
#include "ipc/socket_path.hpp"
#include "ipc/zmq_socket.hpp"
#include "xpon/core/guard.hpp"
#include "xpon/core/unique_fd.hpp"
#include "xpon/peer_side/server.hpp"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <memory>
#include <random>
#include <string>
#include <utility>

#include <sys/socket.h>
#include <sys/un.h>

#include <fmt/format.h>

namespace xpon::ipc {
namespace {

/// Whether a process listens on `path`. ZeroMQ would take the path away from it without a word.
bool is_served(const std::string& path) {
    const core::UniqueFd probe(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
    // EAGAIN: it listens, and its queue is full.
    return ::connect(probe.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 || errno == EAGAIN;
}

std::uint64_t random_id() {
    std::random_device random;
    return std::uint64_t{random()} << 32U | random();
}

class ZmqServer : public IServer {
public:
    explicit ZmqServer(const std::shared_ptr<core::ILogger>& logger) : logger_(logger), process_{random_id(), {}} {}

    core::Result<void> bind(Address peer, IPeerHandler& handler) override {
        return core::guarded(*logger_, [&]() -> core::Result<void> {
            BOOST_OUTCOME_TRY(const auto path, socket_path(peer));
            if (is_served(path)) {
                return core::ErrorPayload(core::Error::Already,
                                          fmt::format("{}: another process serves this address", path));
            }
            auto served = std::make_unique<ServedPeer>(context_, peer, process_, *logger_);
            try {
                served->listen(path);
            } catch (const zmq::error_t& error) {
                return core::ErrorPayload(core::Error::CommonError, fmt::format("{}: {}", path, error.what()));
            }
            peers_.push_back(std::move(served));
            process_.handlers[peer] = &handler;
            return core::success();
        });
    }

    core::Result<void> unbind(Address peer) override {
        const auto removed = std::erase_if(peers_, [&](const auto& served) { return served->address() == peer; });
        if (removed == 0) {
            return core::ErrorPayload(core::Error::Empty, "The address is not served");
        }
        process_.handlers.erase(peer);
        return core::success();
    }

    core::Result<void> serve(std::chrono::milliseconds timeout, std::span<pollfd> others) override {
        return core::guarded(*logger_, [&]() -> core::Result<void> {
            auto due = Clock::now() + timeout;
            std::vector<pollfd> items;
            for (const auto& peer : peers_) {
                due = std::min(due, peer->is_empty() ? peer->next_due() : Clock::time_point());
                items.push_back(news_of(peer->socket()));
            }
            items.insert(items.end(), others.begin(), others.end());
            wait_for(items, std::chrono::ceil<std::chrono::milliseconds>(due - Clock::now()));
            std::copy(items.end() - std::ssize(others), items.end(), others.begin());
            for (std::size_t index = 0; index < peers_.size(); ++index) {
                auto& peer = *peers_.at(index);
                peer.send_due();
                if (items.at(index).revents != 0 || !peer.is_empty()) {
                    peer.serve();
                }
            }
            return core::success();
        });
    }

private:
    std::shared_ptr<core::ILogger> logger_;
    zmq::context_t context_;
    ServingProcess process_;
    std::vector<std::unique_ptr<ServedPeer>> peers_;
};

} // namespace

core::Result<std::unique_ptr<IServer>> make_zmq_server(const std::shared_ptr<core::ILogger>& logger) {
    return core::guarded(
        *logger, [&]() -> core::Result<std::unique_ptr<IServer>> { return std::make_unique<ZmqServer>(logger); });
}

} // namespace xpon::ipc
