#pragma once

#include "simulator/event_log.hpp"
#include "simulator/simulation.hpp"
#include "xpon/ipc/operations.hpp"
#include "xpon/ipc/payload.hpp"
#include "xpon/ipc/server.hpp"

#include <cerrno>
#include <optional>
#include <span>
#include <string_view>

namespace xpon::simulator {

/// One operation that a peer answers from the plant. Payloads are those of the list of operations.
struct PeerRoute {
    ipc::Operation operation;
    ipc::ServerAnswer (*answer)(const Plant&, std::span<const std::byte> payload);
};

struct PeerDescription {
    std::string_view name;
    ipc::Address address;
    std::string_view log; ///< name of its file in the log folder; empty without one
    std::span<const PeerRoute> (*routes)();
};

/// A peer daemon: answers by its routes, unless a fault of the plant says otherwise, and tells the simulation of
/// commits.
class Peer : public ipc::IPeerHandler {
public:
    Peer(const PeerDescription& description, Simulation& simulation);

    ipc::ServerAnswer handle(const ipc::ServerRequest& request) override;
    ipc::ServerAnswer greet(const ipc::ServerRequest& request) override;
    void notice(const ipc::ServerRequest& request) override;

    [[nodiscard]] const PeerDescription& description() const {
        return description_;
    }
    /// Whether the plant's faults leave the daemon running.
    [[nodiscard]] bool is_up() const;
    /// The daemon starts, again or for the first time, or ends.
    /// @{
    void start();
    void end();
    /// @}

protected:
    /// A commit whose notice was well-formed.
    virtual void committed(const ipc::ServerRequest& request, std::span<const service::Config_change> changes);

    [[nodiscard]] Simulation& simulation() const {
        return simulation_;
    }

private:
    [[nodiscard]] const Fault* fault(FaultKind kind) const;
    void log(std::string_view text) const;

    const PeerDescription& description_;
    Simulation& simulation_;
};

/// The answer of a route that takes nothing and gives a record.
template <auto Report>
ipc::ServerAnswer answer_record(const Plant& plant, std::span<const std::byte> payload) {
    if (!payload.empty()) {
        return {EINVAL, {}, {}};
    }
    return {0, ipc::record_payload(Report(plant)), {}};
}

/// The answer of a route that takes nothing and gives a list.
template <auto Report>
ipc::ServerAnswer answer_whole_list(const Plant& plant, std::span<const std::byte> payload) {
    if (!payload.empty()) {
        return {EINVAL, {}, {}};
    }
    const auto entries = Report(plant);
    return {0, ipc::list_payload(std::span(std::as_const(entries))), {}};
}

/// The answer of a route that takes a bitmap and gives a list.
template <class Bitmap, auto Report>
ipc::ServerAnswer answer_list(const Plant& plant, std::span<const std::byte> payload) {
    const auto bitmap = ipc::parse_record<Bitmap>(payload);
    if (!bitmap || bitmap->size > sizeof bitmap->bits * 8) {
        return {EINVAL, {}, {}};
    }
    const auto entries = Report(plant, *bitmap);
    return {0, ipc::list_payload(std::span(std::as_const(entries))), {}};
}

/// The port that a request names, from 1; empty when it is none of `count` ports.
inline std::optional<unsigned> parse_port(std::span<const std::byte> payload, unsigned count) {
    const auto port = ipc::parse_record<std::uint8_t>(payload);
    return port && *port >= 1 && *port <= count ? std::optional<unsigned>(*port) : std::nullopt;
}

} // namespace xpon::simulator
