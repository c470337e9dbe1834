#pragma once

#include "cfgdb/saved_configuration.hpp"
#include "cfgdb/start_report.hpp"
#include "cfgdb/transaction.hpp"

namespace xpon::cfgdb {

/// Leaves in the database how this version lays out its records, for versions that come after it or before it.
void put_layouts(WriteTransaction& transaction);

/// The records of a store, whichever version laid them out, as records of this version: key by key, new keys with their
/// defaults. What does not fit is reported.
RecordList read_foreign_records(const Transaction& transaction, Store store, StartReport& report);

} // namespace xpon::cfgdb
