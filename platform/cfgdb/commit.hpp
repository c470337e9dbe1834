#pragma once

#include "cfgdb/records.hpp"
#include "xpon/core/result.hpp"

#include <vector>

namespace xpon::cfgdb {

/// Moves the candidate into running inside the transaction, with the indexes, and checks the outcome. Returns what
/// changed. Errors: Empty when nothing is pending; InvalidState, "PATH: TEXT", when a check refuses: then the
/// transaction must not be committed.
core::Result<std::vector<RecordId>> apply_candidate(WriteTransaction& transaction);

/// Builds the indexes anew from the running records.
void rebuild_ont_index(WriteTransaction& transaction);

} // namespace xpon::cfgdb
