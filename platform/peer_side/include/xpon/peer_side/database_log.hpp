#pragma once

#include "xpon/core/logger.hpp"

#include <memory>

namespace xpon::cfgdb {

/// Where this process's configuration database reports what no caller is told: a saved file that could not be used,
/// records of another version, the faults behind the first one of a refused commit. Nothing is reported before the
/// first call or after one with an empty pointer.
void set_database_log(std::shared_ptr<core::ILogger> logger);

/// The logger in use; one that drops everything when none was set.
core::ILogger& database_log();

} // namespace xpon::cfgdb
