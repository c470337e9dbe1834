#pragma once

#include "xpon/core/json_tree.hpp"

#include <string>

namespace xpon::oltctl {

/// An object as lines of key and value, what belongs to a key indented below it. Lists of
/// plain values stay in a line, rows of them become a table, and so do objects that have the same keys.
std::string tree_of(const cJSON* value, unsigned indent = 0);

} // namespace xpon::oltctl
