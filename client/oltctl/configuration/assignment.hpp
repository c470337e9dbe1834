#pragma once

#include "xpon/core/json_tree.hpp"

#include <string>

namespace xpon::oltctl {

/// Whether a word of the command line is an assignment, KEY=VALUE.
bool is_assignment(const std::string& word);
/// Puts the value of "servers.0.address=ntp.example.net" into the record: array positions count from 0, and the one
/// behind the last adds an item. A value is JSON where it can be read so, else a text; a serial may be written
/// SIMUA0030011. Failure (usage) for a key that leads through a plain value or past the end of an array.
void assign(cJSON* record, const std::string& assignment);

} // namespace xpon::oltctl
