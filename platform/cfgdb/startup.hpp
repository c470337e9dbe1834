#pragma once

#include "cfgdb/environment.hpp"

namespace xpon::cfgdb {

/// Fills a new database: the users, and the saved configuration; when that cannot be used the one before it, else the
/// factory state. One that another version of this program filled is carried over. Of several processes that come at
/// once, one does it. What runs, why, and what of it was left out is logged, by those too that find the work done.
void fill_when_new(const Environment& environment);

/// Makes running what a start would make it, in one step, and drops the candidate. Users stay.
void restart_from_saved(const Environment& environment);

} // namespace xpon::cfgdb
