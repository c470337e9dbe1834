#pragma once

#include <functional>
#include <string>

namespace xpon::cfgdb {

/// Looks through the database file in the folder: its two heads, every page of its tree, the checksum of every entry,
/// the sum of them, and the list of free pages. "" when all of it is sound, else what is not. Throws
/// std::system_error for causes outside of the file. May be ended by a signal when the file is damaged. `begins` is
/// called once nobody else writes any more: until then it waits for as long as another process does.
std::string survey_database(const std::string& folder, const std::function<void()>& begins);

} // namespace xpon::cfgdb
