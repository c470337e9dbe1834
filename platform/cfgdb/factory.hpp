#pragma once

#include "cfgdb/element.hpp"
#include "cfgdb/transaction.hpp"

namespace xpon::cfgdb {

/// The record as it leaves the factory. The bytes live as long as the program.
Bytes factory_record(const RecordId& id);

} // namespace xpon::cfgdb
