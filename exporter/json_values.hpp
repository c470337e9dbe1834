#pragma once

#include "xpon/core/json_tree.hpp"

#include <optional>
#include <string>

namespace xpon::exporter {

/// Members of what the OLT answers. What is missing, or is of another type, is nothing: never 0.

inline const cJSON* member(const cJSON* object, const char* key) {
    return cJSON_GetObjectItemCaseSensitive(object, key);
}

inline std::optional<double> number(const cJSON* object, const char* key) {
    const auto* item = member(object, key);
    return cJSON_IsNumber(item) ? std::optional(item->valuedouble) : std::nullopt;
}

/// "" for none.
inline std::string text(const cJSON* object, const char* key) {
    const char* value = cJSON_GetStringValue(member(object, key));
    return value == nullptr ? "" : value;
}

} // namespace xpon::exporter
