#pragma once

#include "docs/routes.hpp"
#include "schemas/field_schema.hpp"
#include "schemas/json.hpp"
#include "schemas/shape_schema.hpp"

#include <optional>
#include <string>
#include <string_view>

// What a request of a route carries, and its answer, as far as that differs from route to route.

namespace xpon::schemas {

using api_service::RouteRow;

/// The name of a route's documents: path and method.
inline std::string name_of(const RouteRow& row) {
    return fmt::format("{}.{}", row.path, row.method);
}

/// The method by which a route of an element works.
inline bool is_method(const RouteRow& row, std::string_view method) {
    return method == row.method;
}

inline std::optional<Json> schema_of(const api_service::Shape* shape, const RecordSchemas& records, Json& definitions) {
    return shape == nullptr ? std::nullopt : std::optional(schema_of(*shape, records, definitions));
}

/// The data of the answer; empty where there is none.
inline std::optional<Json> answer_data(const RouteRow& row, const RecordSchemas& records, Json& definitions) {
    const auto* const element = docs::element_of(row);
    if (element == nullptr) {
        return schema_of(row.target.shape_at(row.path).answer, records, definitions);
    }
    if (!is_method(row, "get")) {
        return {};
    }
    auto record = reference(records.define(element->table, Use::answer, definitions));
    return element->depth == 0 ? record : Json{{"type", "array"}, {"items", std::move(record)}};
}

/// The data of the request; empty where there is none.
inline std::optional<Json> request_data(const RouteRow& row, const RecordSchemas& records, Json& definitions) {
    const auto* const element = docs::element_of(row);
    if (element == nullptr) {
        return schema_of(row.target.shape_at(row.path).request, records, definitions);
    }
    return is_method(row, "set") ? std::optional(reference(records.define(element->table, Use::set, definitions)))
                                 : std::nullopt;
}

} // namespace xpon::schemas
