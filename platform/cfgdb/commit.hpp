#pragma once

#include "cfgdb/checks/faults.hpp"
#include "cfgdb/records.hpp"
#include "xpon/core/result.hpp"

#include <vector>

namespace xpon::cfgdb {

/// What became of a candidate.
struct Applied {
    std::vector<RecordId> changes;
    Faults faults; ///< when there are any, the transaction must not be committed
};

/// Moves the candidate into running inside the transaction, with the indexes, and checks the outcome.
Applied apply_and_check(WriteTransaction& transaction);

/// The same for a commit: returns what changed. Errors: Empty when nothing is pending; InvalidState, "PATH: TEXT", when
/// a check refuses.
core::Result<std::vector<RecordId>> apply_candidate(WriteTransaction& transaction);

} // namespace xpon::cfgdb
