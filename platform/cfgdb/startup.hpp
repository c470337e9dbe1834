#pragma once

#include "cfgdb/environment.hpp"

namespace xpon::cfgdb {

/// The saved configuration that a start begins with.
inline constexpr const char* saved_configuration_path = "/configuration/save-config";

/// Whether there is a saved file, or the one before it.
bool saved_configuration_exists();

/// Fills a new database: the users, and the saved configuration; when that cannot be used the one before it, else the
/// factory state. What could not be used is logged. Of several processes that come at once, one fills the database.
/// One that another version of this program filled is brought up to date.
void fill_when_new(const Environment& environment);

/// Makes running what a start would make it, in one step, and drops the candidate. Users stay.
void restart_from_saved(const Environment& environment);

} // namespace xpon::cfgdb
