#pragma once

#include "cfgdb/checks/faults.hpp"
#include "cfgdb/draft.hpp"
#include "cfgdb/records.hpp"
#include "xpon/core/result.hpp"
#include "xpon/ipc/address.hpp"

#include <cstddef>
#include <cstdint>
#include <optional>
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
Applied apply_and_check(ChangeableTransaction& transaction);

/// A commit that was worked out and has passed all checks.
struct PlannedCommit {
    /// What it follows from, to the byte.
    struct Basis {
        std::uint64_t last_commit = 0;
        std::vector<std::byte> candidate; ///< keys and records

        bool operator==(const Basis&) const = default;
    };

    Basis basis;
    Applied applied;
    Draft::Changes changes;
};

/// Works out what a commit of the present candidate does. Nothing is locked for that. Errors: Empty when nothing is
/// pending; InvalidState, "PATH: TEXT", when a check refuses.
core::Result<PlannedCommit> plan_commit(const Environment& environment);

/// Carries it out and returns the number of the commit, or none when its basis is no longer the present one.
std::optional<std::uint64_t> carry_out(const Environment& environment, const PlannedCommit& plan, ipc::Address by);

} // namespace xpon::cfgdb
