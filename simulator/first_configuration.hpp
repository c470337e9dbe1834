#pragma once

#include "xpon/core/result.hpp"

namespace xpon::simulator {

/// Puts the first `onts` ONTs of the plant into the running configuration of an OLT that has none of its own yet;
/// leaves any other OLT as it is. All or none of them.
core::Result<void> configure_fresh_olt(unsigned onts);

} // namespace xpon::simulator
