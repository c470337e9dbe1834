#include "simulator/peers/peer.hpp"

#include "xpon/peer_side/olt_root.hpp"

#include <algorithm>
#include <string>
#include <system_error>
#include <vector>

#include <fmt/format.h>

namespace xpon::simulator {
namespace {

FaultTarget target_of(std::string_view peer) {
    return {.where = FaultTarget::Where::peer, .peer = peer};
}

} // namespace

Peer::Peer(const PeerDescription& description, Simulation& simulation)
    : description_(description), simulation_(simulation) {}

const Fault* Peer::fault(FaultKind kind) const {
    return simulation_.plant().faults().find(kind, target_of(description_.name()));
}

bool Peer::is_up() const {
    return simulation_.runs(description_.address);
}

ipc::ServerAnswer Peer::handle(const ipc::ServerRequest& request) {
    if (!request.is_repeated) {
        simulation_.advance();
    }
    if (!is_up()) {
        // It is about to be served no more.
        return {ECONNREFUSED, {}, {}};
    }
    ipc::ServerAnswer answer{EOPNOTSUPP, {}, {}};
    const auto routes = description_.routes();
    const auto route =
        std::ranges::find(routes, static_cast<peer_side::Operation>(request.operation), &PeerRoute::operation);
    if (static_cast<peer_side::Operation>(request.operation) == peer_side::Operation::accept_configuration) {
        // A daemon that fails at its own calls has nothing against a configuration.
        answer.status = fault(FaultKind::commit_refused) == nullptr ? 0 : EPERM;
    } else if (const auto* const error = fault(FaultKind::peer_error)) {
        answer.status = static_cast<int>(error->value);
    } else if (route != routes.end()) {
        answer = this->answer(*route, request);
    }
    answer.delay += delay();
    last_answer_ = Clock::now();
    return answer;
}

bool Peer::has_just_answered() const {
    static constexpr std::chrono::seconds reading_time{1};
    return last_answer_ && Clock::now() - *last_answer_ < reading_time;
}

ipc::ServerAnswer Peer::answer(const PeerRoute& route, const ipc::ServerRequest& request) {
    if (const auto* const report = std::get_if<Report>(&route.answer)) {
        return (*report)(simulation_.network(), request.payload);
    }
    try {
        return std::get<Action>(route.answer)(simulation_, request);
    } catch (const std::system_error& refusal) {
        simulation_.note(fmt::format("refused to {:#010x}: {}", request.client.value, refusal.what()));
        return {refusal.code().value(), {}, {}};
    }
}

ipc::ServerAnswer Peer::greet(const ipc::ServerRequest&) {
    // Who greets may be a daemon that ended between a commit and the notice of it.
    simulation_.advance();
    return {0, {}, delay()};
}

std::chrono::milliseconds Peer::delay() const {
    const auto* const slow = fault(FaultKind::peer_slow);
    return std::chrono::milliseconds(slow == nullptr ? 0 : static_cast<int>(slow->value));
}

void Peer::notice(const ipc::ServerRequest&) {
    // It is to end the wait for requests: the simulation is brought to the present behind each, once for all peers.
}

void Peer::start() {
    log("started");
}

void Peer::end() {
    log("ended");
}

void Peer::log(std::span<const Event> events) const {
    std::vector<std::string> lines;
    for (const auto& event : events) {
        if (event.by == description_.address) {
            lines.push_back(fmt::format("{}: {}", event.target, event.text));
        }
    }
    if (!lines.empty() && !description_.log.empty()) {
        EventLog(below_olt_root(fmt::format("/var/log/{}", description_.log))).write(lines);
    }
}

void Peer::log(std::string_view text) const {
    if (!description_.log.empty()) {
        EventLog(below_olt_root(fmt::format("/var/log/{}", description_.log))).write(text);
    }
}

} // namespace xpon::simulator
