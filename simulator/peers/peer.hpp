#pragma once

#include "simulator/files/event_log.hpp"
#include "simulator/simulation/simulation.hpp"
#include "xpon/peer_side/operations.hpp"
#include "xpon/peer_side/payload.hpp"
#include "xpon/peer_side/server.hpp"

#include <cerrno>
#include <chrono>
#include <optional>
#include <span>
#include <string_view>
#include <type_traits>
#include <variant>

namespace xpon::simulator {

/// Tells what is true of the plant and its subscribers.
using Report = ipc::ServerAnswer (*)(const AccessNetwork&, std::span<const std::byte> payload);
/// Does something to the OLT. A std::system_error that it throws is a refusal: its errno value is the answer, its text
/// goes to the OLT's events.
using Action = ipc::ServerAnswer (*)(Simulation&, const ipc::ServerRequest&);

/// One operation that a peer answers. Payloads are those of the list of operations.
struct PeerRoute {
    peer_side::Operation operation;
    std::variant<Report, Action> answer;
};

struct PeerDescription {
    ipc::Address address;
    std::string_view log; ///< name of its file in the log folder; empty without one
    std::span<const PeerRoute> (*routes)();

    [[nodiscard]] constexpr std::string_view name() const {
        return peer_side::name_of(address);
    }
};

/// A peer daemon: answers by its routes, unless a fault of the plant says otherwise. Whatever reaches it has the
/// simulation follow the commits of before.
class Peer : public ipc::IPeerHandler {
public:
    Peer(const PeerDescription& description, Simulation& simulation);

    ipc::ServerAnswer handle(const ipc::ServerRequest& request) override;
    ipc::ServerAnswer greet(const ipc::ServerRequest& request) override;
    void notice(const ipc::ServerRequest& request) override;

    [[nodiscard]] const PeerDescription& description() const {
        return description_;
    }
    [[nodiscard]] bool is_up() const;
    /// Writes what the daemon notices of these to its log.
    void log(std::span<const Event> events) const;
    /// Whether somebody may not have read an answer yet: a connection that ends takes it along.
    [[nodiscard]] bool has_just_answered() const;
    /// The daemon starts, again or for the first time, or ends.
    /// @{
    void start();
    void end();
    /// @}

private:
    [[nodiscard]] const Fault* fault(FaultKind kind) const;
    [[nodiscard]] std::chrono::milliseconds delay() const;
    ipc::ServerAnswer answer(const PeerRoute& route, const ipc::ServerRequest& request);
    void log(std::string_view text) const;

    using Clock = std::chrono::steady_clock;

    const PeerDescription& description_;
    Simulation& simulation_;
    std::optional<Clock::time_point> last_answer_;
};

/// A report of the plant alone, or of all of its network.
template <auto Report, class... Question>
auto report(const AccessNetwork& network, const Question&... question) {
    if constexpr (std::is_invocable_v<decltype(Report), const Plant&, const Question&...>) {
        return Report(network.plant(), question...);
    } else {
        return Report(network, question...);
    }
}

/// The answer of a route that takes nothing and gives a record.
template <auto Report>
ipc::ServerAnswer answer_record(const AccessNetwork& network, std::span<const std::byte> payload) {
    if (!payload.empty()) {
        return {EINVAL, {}, {}};
    }
    return {0, peer_side::record_payload(report<Report>(network)), {}};
}

/// Empty when the payload is no such bitmap.
template <class Bitmap>
std::optional<Bitmap> parse_bitmap(std::span<const std::byte> payload) {
    const auto bitmap = peer_side::parse_record<Bitmap>(payload);
    return bitmap && bitmap->size <= sizeof bitmap->bits * 8 ? bitmap : std::nullopt;
}

/// The answer of a route that takes nothing and gives a list.
template <auto Report>
ipc::ServerAnswer answer_whole_list(const AccessNetwork& network, std::span<const std::byte> payload) {
    if (!payload.empty()) {
        return {EINVAL, {}, {}};
    }
    const auto entries = report<Report>(network);
    return {0, peer_side::list_payload(std::span(std::as_const(entries))), {}};
}

/// The answer of a route that takes a bitmap and gives a list.
template <class Bitmap, auto Report>
ipc::ServerAnswer answer_list(const AccessNetwork& network, std::span<const std::byte> payload) {
    const auto bitmap = parse_bitmap<Bitmap>(payload);
    if (!bitmap) {
        return {EINVAL, {}, {}};
    }
    const auto entries = report<Report>(network, *bitmap);
    return {0, peer_side::list_payload(std::span(std::as_const(entries))), {}};
}

/// The port that a request names, from 1; empty when it is none of `count` ports.
inline std::optional<unsigned> parse_port(std::span<const std::byte> payload, unsigned count) {
    const auto port = peer_side::parse_record<std::uint8_t>(payload);
    return port && *port >= 1 && *port <= count ? std::optional<unsigned>(*port) : std::nullopt;
}

} // namespace xpon::simulator
