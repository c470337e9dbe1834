#pragma once

#include "cfgdb/saved_configuration.hpp"
#include "cfgdb/start_report.hpp"
#include "cfgdb/transaction.hpp"

#include <functional>

namespace xpon::cfgdb {

/// What a transaction does around the records that it lets run.
struct Filling {
    /// Makes running and the candidate empty. False when there is nothing to do any more.
    std::function<bool(WriteTransaction&)> prepare;
    /// Runs just before the transaction is committed.
    std::function<void(WriteTransaction&)> complete;
};

/// Lets the records run on top of the factory state, all of those that the checks of a commit let run together. One
/// that a check refuses is left out with what depends on it, and reported. Returns what `prepare` returned.
bool run_what_fits(const Environment& environment, RecordList records, const Filling& filling, StartReport& report);

} // namespace xpon::cfgdb
