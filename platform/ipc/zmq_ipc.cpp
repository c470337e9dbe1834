#include "ipc/zmq_ipc.hpp"

#include "ipc/peer_group.hpp"
#include "ipc/socket_path.hpp"
#include "xpon/core/guard.hpp"
#include "xpon/core/unique_fd.hpp"
#include "xpon/logger/logger.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <map>
#include <system_error>
#include <utility>
#include <vector>

#include <sys/eventfd.h>

#include <fmt/format.h>

namespace xpon::ipc {
namespace {

/// Throws when there are fewer descriptors than a context and its first connection take.
void check_descriptors_left() {
    std::array<core::UniqueFd, 24> taken;
    for (auto& descriptor : taken) {
        descriptor = core::UniqueFd(::eventfd(0, EFD_CLOEXEC));
        if (!descriptor) {
            throw std::system_error(errno, std::generic_category(), "Connections to peers");
        }
    }
}

class PeerConnections : public Ipc {
public:
    PeerConnections(Address own, const std::shared_ptr<core::ILogger>& logger, const Timing& timing,
                    Connecting connecting)
        : own_(own), logger_(logger), timing_(timing), connecting_(connecting) {
        // A context takes its descriptors with its first socket, and ends the process when there are none left.
        check_descriptors_left();
        const zmq::socket_t first(context_, zmq::socket_type::dealer);
    }

    core::Result<void> connect(Address peer) {
        return core::guarded(*logger_, [&]() -> core::Result<void> {
            if (const auto found = peers_.find(peer); found != peers_.end()) {
                BOOST_OUTCOME_TRY(found->second->check_presence());
                return core::ErrorPayload(core::Error::Already, fmt::format("Peer {} is connected", to_text(peer)));
            }
            BOOST_OUTCOME_TRY(auto connection, make_connection(peer));
            BOOST_OUTCOME_TRY(connection->shake_hands());
            peers_.emplace(peer, std::move(connection));
            return core::success();
        });
    }

    [[nodiscard]] Address own_address() const noexcept override {
        return own_;
    }

    Reply request(Address peer, std::uint16_t operation, std::span<const std::byte> payload,
                  std::chrono::milliseconds deadline) noexcept override {
        auto reply = core::guarded(*logger_, [&]() -> core::Result<Reply> {
            const auto end = Clock::now() + deadline;
            auto found = peers_.find(peer);
            if (found == peers_.end() && connecting_ == Connecting::on_request) {
                BOOST_OUTCOME_TRY(auto connection, make_connection(peer));
                connection->await_first_contact();
                found = peers_.emplace(peer, std::move(connection)).first;
            }
            if (found == peers_.end()) {
                return Reply{ENOTCONN, {}};
            }
            return found->second->request(operation, payload, end);
        });
        return reply ? std::move(reply).value() : Reply{EIO, {}};
    }

    std::optional<Address> ask_all(std::uint16_t operation, std::span<const std::byte> payload,
                                   std::chrono::milliseconds deadline) noexcept override {
        const auto end = Clock::now() + deadline;
        const auto first = core::guarded(*logger_, [&]() -> core::Result<std::optional<Address>> {
            // All answers are fetched, also after a refusal: one that is left behind would cost its peer's next
            // request.
            std::vector<Address> refusing;
            for (auto asked = all_peers(); !asked.empty();) {
                take_news(asked);
                std::erase_if(asked, [](PeerConnection* peer) { return !peer->may_be_asked(); });
                std::vector<GroupQuestion> questions;
                for (const auto& group : by_process(asked)) {
                    questions.emplace_back(group, operation, payload, end);
                }
                asked.clear();
                for (auto& question : questions) {
                    const auto again = question.finish(refusing);
                    asked.insert(asked.end(), again.begin(), again.end());
                }
            }
            const auto least = std::ranges::min_element(refusing);
            return least == refusing.end() ? std::nullopt : std::optional(*least);
        });
        return first ? first.value() : std::nullopt;
    }

    void notify_all(std::uint16_t operation, std::span<const std::byte> payload) noexcept override {
        std::ignore = core::guarded(*logger_, [&]() -> core::Result<void> {
            const auto peers = all_peers();
            take_news(peers);
            for (const auto& group : by_process(peers)) {
                notify(group, operation, payload);
            }
            return core::success();
        });
    }

private:
    core::Result<std::unique_ptr<PeerConnection>> make_connection(Address peer) {
        BOOST_OUTCOME_TRY(const auto path, socket_path(peer));
        return std::make_unique<PeerConnection>(context_, own_, peer, path, *logger_, timing_);
    }

    [[nodiscard]] Peers all_peers() const {
        Peers peers;
        for (const auto& [address, connection] : peers_) {
            peers.push_back(connection.get());
        }
        return peers;
    }

    Address own_;
    std::shared_ptr<core::ILogger> logger_;
    Timing timing_;
    Connecting connecting_;
    zmq::context_t context_;
    std::map<Address, std::unique_ptr<PeerConnection>> peers_;
};

class ZmqIpc : public IIpc {
public:
    ZmqIpc(Address own, const std::shared_ptr<core::ILogger>& logger, const Timing& timing, Connecting connecting)
        : connections_(std::make_unique<PeerConnections>(own, logger, timing, connecting)) {}

    core::Result<void> connect(Address peer) override {
        return connections_->connect(peer);
    }
    [[nodiscard]] Ipc* raw() const override {
        return connections_.get();
    }

private:
    std::unique_ptr<PeerConnections> connections_;
};

} // namespace

core::Result<std::shared_ptr<IIpc>> make_zmq_ipc(Address own, const std::shared_ptr<core::ILogger>& logger,
                                                 const Timing& timing, Connecting connecting) {
    return core::guarded(*logger, [&]() -> core::Result<std::shared_ptr<IIpc>> {
        return std::make_shared<ZmqIpc>(own, logger, timing, connecting);
    });
}

core::Result<std::shared_ptr<IIpc>> make_zmq_ipc(Address own, const std::string& name) {
    return make_zmq_ipc(own, std::make_shared<logger::Logger>(name), {});
}

} // namespace xpon::ipc
