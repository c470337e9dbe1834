#pragma once

#include <optional>
#include <string>

namespace xpon::cfgdb {

/// What is wrong with the database file in the folder; empty when nothing is, or when there is no file. LMDB trusts the
/// pages that it maps, and a damaged one can end the process that reads it: so a child process looks, at every entry
/// and at the list of free pages. The caller must not have the database open. Throws std::system_error when nobody can
/// look, for lack of memory for example. Nothing is found while another process keeps the right to write for itself.
std::optional<std::string> find_damage(const std::string& folder);

} // namespace xpon::cfgdb
