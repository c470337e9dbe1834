#pragma once

#include "cfgdb/records.hpp"
#include "xpon/core/result.hpp"

#include <cstdint>
#include <set>
#include <vector>

namespace xpon::cfgdb {

/// What a commit did.
struct Applied {
    std::vector<RecordId> changes; ///< in order
    std::set<std::uint16_t> onts;  ///< flat indices of those that it reaches, configured or not
};

/// Moves the candidate into running inside the transaction, with the indexes, and checks the outcome. Errors: Empty
/// when nothing is pending; InvalidState, "PATH: TEXT", when a check refuses: then the transaction must not be
/// committed.
core::Result<Applied> apply_candidate(WriteTransaction& transaction);

/// Builds the indexes anew from the running records.
void rebuild_ont_index(WriteTransaction& transaction);

} // namespace xpon::cfgdb
