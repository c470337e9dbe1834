#pragma once

#include "cfgdb/element.hpp"
#include "xpon/core/result.hpp"
#include "xpon/ipc/ipc.hpp"
#include "xpon/service/config_change.hpp"

#include <cstdint>
#include <span>
#include <vector>

namespace xpon::cfgdb {

/// The changes as peers are told of them.
std::vector<service::Config_change> notice_of(std::span<const RecordId> changes);

// What peers hear of a commit. `ipc` may be null: there are no peers then.

/// The endpoint's address, which a commit is known by.
ipc::Address address_of(const ipc::IIpc* ipc);

/// Asks every peer that is up whether these changes of the running configuration suit it. Error InvalidState,
/// "PATH: TEXT", when one refuses. One that is silent, or has troubles of its own, does not.
core::Result<void> ask_for_acceptance(const ipc::IIpc* ipc, std::span<const RecordId> changes);

/// Tells every connected peer the number of the last commit.
void send_change_notice(const ipc::IIpc* ipc, std::uint64_t number);

} // namespace xpon::cfgdb
