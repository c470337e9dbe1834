#include "cfgdb/change_notice.hpp"

#include "ipc/ipc_handle.hpp"
#include "xpon/peer_side/operations.hpp"

#include <chrono>

#include <fmt/format.h>

namespace xpon::cfgdb {
namespace {

using peer_side::Operation;

Ipc* handle_of(const ipc::IIpc* ipc) {
    return ipc == nullptr ? nullptr : ipc->raw();
}

/// Clients wait for a commit as for everything else.
constexpr std::chrono::milliseconds time_to_accept{1000};

} // namespace

std::vector<service::Config_change> notice_of(std::span<const RecordId> changes) {
    std::vector<service::Config_change> notice;
    notice.reserve(changes.size());
    for (const auto& id : changes) {
        notice.push_back({static_cast<std::uint16_t>(id.element), {id.indices[0], id.indices[1]}});
    }
    return notice;
}

ipc::Address address_of(const ipc::IIpc* ipc) {
    const auto* const handle = handle_of(ipc);
    return handle == nullptr ? ipc::Address{} : handle->own_address();
}

core::Result<void> ask_for_acceptance(const ipc::IIpc* ipc, std::span<const RecordId> changes) {
    if (auto* const handle = handle_of(ipc)) {
        const auto notice = notice_of(changes);
        const auto refusing = handle->ask_all(static_cast<std::uint16_t>(Operation::accept_configuration),
                                              std::as_bytes(std::span(notice)), time_to_accept);
        if (refusing) {
            return core::ErrorPayload(
                core::Error::InvalidState,
                fmt::format("configuration: Peer {} refused the configuration", peer_side::name_of(*refusing)));
        }
    }
    return core::success();
}

void send_change_notice(const ipc::IIpc* ipc, std::uint64_t number) {
    if (auto* const handle = handle_of(ipc)) {
        handle->notify_all(static_cast<std::uint16_t>(Operation::configuration_changed),
                           std::as_bytes(std::span(&number, 1)));
    }
}

} // namespace xpon::cfgdb
