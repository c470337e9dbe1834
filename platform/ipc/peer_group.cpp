#include "ipc/peer_group.hpp"

#include "ipc/zmq_socket.hpp"

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <map>
#include <tuple>
#include <utility>

namespace xpon::ipc {
namespace {

std::vector<Address> without(const Peers& peers, const PeerConnection* carrier) {
    std::vector<Address> others;
    for (const auto* const peer : peers) {
        if (peer != carrier) {
            others.push_back(peer->peer());
        }
    }
    return others;
}

} // namespace

void take_news(const Peers& peers) {
    std::vector<pollfd> items;
    std::ranges::transform(peers, std::back_inserter(items), [](PeerConnection* peer) { return peer->news(); });
    wait_for(items, {});
    for (std::size_t index = 0; index < peers.size(); ++index) {
        if (items[index].revents != 0) {
            peers[index]->take_news();
        }
    }
}

std::vector<Peers> by_process(const Peers& peers) {
    std::vector<Peers> groups;
    std::map<std::uint64_t, std::size_t> places;
    for (auto* const peer : peers) {
        const auto server = peer->server();
        const auto place = server == 0 ? groups.size() : places.emplace(server, groups.size()).first->second;
        groups.resize(std::max(groups.size(), place + 1));
        groups[place].push_back(peer);
    }
    return groups;
}

GroupQuestion::GroupQuestion(const Peers& peers, std::uint16_t operation, std::span<const std::byte> payload,
                             Clock::time_point deadline)
    : carrier_(peers.front()), waiting_(peers), deadline_(deadline),
      question_(carrier_->ask(operation, payload, without(peers, carrier_), deadline)) {}

Peers GroupQuestion::finish(std::vector<Address>& refusing) {
    if (!question_) {
        std::erase(waiting_, carrier_);
        return std::move(waiting_);
    }
    // Each answer is that of one at least: answers that name nobody do not go on for ever.
    for (auto answers = waiting_.size(); answers > 0 && !waiting_.empty(); --answers) {
        PeerConnection::Answer answer;
        const int cause = carrier_->await_answer(*question_, deadline_, answer);
        if (cause == ETIMEDOUT) {
            break;
        }
        if (cause != 0) {
            carrier_->mark_down(cause);
            std::erase(waiting_, carrier_);
            elsewhere_.insert(elsewhere_.end(), waiting_.begin(), waiting_.end());
            waiting_.clear();
        } else {
            take(answer, refusing);
        }
    }
    for (auto* const silent : waiting_) {
        silent->owe_answer();
    }
    return std::move(elsewhere_);
}

void GroupQuestion::take(const PeerConnection::Answer& answer, std::vector<Address>& refusing) {
    const auto has_answered = [&](const PeerConnection* peer) {
        return std::ranges::find(answer.from, peer->peer()) != answer.from.end();
    };
    for (auto* const peer : waiting_) {
        if (!has_answered(peer)) {
            continue;
        }
        if (answer.reply.status == EPERM) {
            refusing.push_back(peer->peer());
        } else if (answer.reply.status == ECONNREFUSED && peer != carrier_) {
            peer->forget_server();
            elsewhere_.push_back(peer);
        }
    }
    std::erase_if(waiting_, has_answered);
}

void notify(const Peers& peers, std::uint16_t operation, std::span<const std::byte> payload) {
    std::ignore = std::ranges::any_of(
        peers, [&](PeerConnection* carrier) { return carrier->notify(operation, payload, without(peers, carrier)); });
}

} // namespace xpon::ipc
