#pragma once

#include "cfgdb/checks/faults.hpp"
#include "cfgdb/records.hpp"
#include "xpon/core/result.hpp"

#include <cstdint>
#include <set>
#include <vector>

namespace xpon::cfgdb {

/// What became of a candidate.
struct Applied {
    std::vector<RecordId> changes; ///< in order
    std::set<std::uint16_t> onts;  ///< flat indices of those that it reaches, configured or not
    Faults faults;                 ///< when there are any, the transaction must not be committed
};

/// Moves the candidate into running inside the transaction, with the indexes, and checks the outcome.
Applied apply_and_check(WriteTransaction& transaction);

/// The same for a commit. Errors: Empty when nothing is pending; InvalidState, "PATH: TEXT", when a check refuses: then
/// the transaction must not be committed.
core::Result<Applied> apply_candidate(WriteTransaction& transaction);

} // namespace xpon::cfgdb
