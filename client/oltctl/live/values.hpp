#pragma once

#include "xpon/core/json_tree.hpp"

#include <optional>
#include <string>
#include <vector>

namespace xpon::oltctl {

/// One plain value of an answer and where it stands there.
struct Value {
    std::string place; ///< keys and list items from the outside in: "3/17 service 1 Rx Bytes"
    std::string text;  ///< in one line
    std::optional<double> number;
};

/// All of them, in the answer's order. An item of a list goes by what tells it from the others, such as the number of
/// an ONT or a MAC address, so that it keeps its place when others come and go; else by its position, from 1.
std::vector<Value> values_of(const cJSON* answer);

} // namespace xpon::oltctl
