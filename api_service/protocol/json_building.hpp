#pragma once

#include "api_service/core_names.hpp"
#include "api_service/protocol/json_writer.hpp"

#include <cstdint>
#include <string>
#include <utility>

#include <fmt/format.h>

namespace xpon::api_service {

// The steps with which every answer is built. The first step that fails ends the building; the caller's JsonTree
// deletes what was built so far. A failed step never changes its parent.

Result<JsonTree> create_object();
Result<JsonTree> create_array();

/// A JSON value from a C++ one: string, boolean or number.
template <class T>
Result<JsonTree> create_cjson_from_value(const T& value);
template <>
Result<JsonTree> create_cjson_from_value(const std::string& value);
template <>
Result<JsonTree> create_cjson_from_value(const bool& value);
template <>
Result<JsonTree> create_cjson_from_value(const unsigned long& value);
template <>
Result<JsonTree> create_cjson_from_value(const double& value);

/// Hands `item` to the object under a copy of `key`.
Result<void> add_to_object(cJSON* object, const char* key, JsonTree item);
/// Hands `item` to the array, at its end.
Result<void> add_to_array(cJSON* array, JsonTree item);

template <class T>
Result<void> set_object_item(cJSON* object, const char* key, const T& value) {
    BOOST_OUTCOME_TRY(auto item, create_cjson_from_value(value));
    return add_to_object(object, key, std::move(item));
}

/// Writes `tree` at the place that the text has reached.
Result<void> write_tree(JsonWriter& writer, const cJSON* tree);

/// The indented print form of `tree`.
Result<std::string> print_tree(const cJSON* tree);

/// The text behind the place where cJSON last stopped to parse, for messages; empty when it did not fail.
std::string cjson_error_position();

} // namespace xpon::api_service
