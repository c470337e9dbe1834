#pragma once

#include "xpon/core/json_tree.hpp"

namespace xpon::client {

using Json = core::JsonTree;

} // namespace xpon::client
