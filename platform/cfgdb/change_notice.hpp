#pragma once

#include "cfgdb/element.hpp"
#include "xpon/ipc/ipc.hpp"

#include <span>

namespace xpon::cfgdb {

/// Tells every connected peer which records of the running configuration changed. `ipc` may be null.
void send_change_notice(const ipc::IIpc* ipc, std::span<const RecordId> changes);

} // namespace xpon::cfgdb
