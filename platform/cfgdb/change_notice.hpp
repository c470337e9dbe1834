#pragma once

#include "cfgdb/element.hpp"
#include "xpon/core/result.hpp"
#include "xpon/ipc/ipc.hpp"

#include <span>

namespace xpon::cfgdb {

// What peers hear of a commit. `ipc` may be null: there are no peers then.

/// Asks every peer that is up whether these changes of the running configuration suit it. Error InvalidState,
/// "PATH: TEXT", when one refuses.
core::Result<void> ask_for_acceptance(const ipc::IIpc* ipc, std::span<const RecordId> changes);

/// Tells every connected peer which records of the running configuration changed.
void send_change_notice(const ipc::IIpc* ipc, std::span<const RecordId> changes);

} // namespace xpon::cfgdb
