#pragma once

#include <string>
#include <string_view>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace xpon::schemas {

/// Members keep the order in which they were added.
using Json = nlohmann::ordered_json;

inline constexpr const char* dialect = "https://json-schema.org/draft/2020-12/schema";

/// The name of a document among all of them; such names need no server.
inline std::string urn(std::string_view kind, std::string_view name) {
    return fmt::format("urn:olt-api:{}:{}", kind, name);
}

inline Json reference(std::string_view definition) {
    return {{"$ref", fmt::format("#/$defs/{}", definition)}};
}

/// An object with these properties and no others.
inline Json closed_object(Json properties, Json required) {
    Json schema{{"type", "object"}, {"properties", std::move(properties)}};
    if (schema["properties"].empty()) {
        schema["properties"] = Json::object();
    }
    if (!required.empty()) {
        schema["required"] = std::move(required);
    }
    schema["additionalProperties"] = false;
    return schema;
}

} // namespace xpon::schemas
