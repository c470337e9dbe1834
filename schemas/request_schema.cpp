#include "schemas/request_schema.hpp"

#include "schemas/text_patterns.hpp"

#include <limits>

namespace xpon::schemas {
namespace {

using api_service::IndexCount;

struct Limits {
    unsigned least;
    unsigned most;
};
constexpr auto any_number = std::numeric_limits<unsigned>::max();

Limits limits_of(IndexCount count) {
    switch (count) {
    case IndexCount::none:
        return {0, 0};
    case IndexCount::one:
        return {1, 1};
    case IndexCount::none_or_one:
        return {0, 1};
    case IndexCount::one_or_two:
        return {1, 2};
    case IndexCount::none_or_two:
        return {0, 2};
    case IndexCount::some:
        break;
    }
    return {1, any_number};
}

/// ONTs are named by pairs of PON port and ONT, their services by one pair and the service.
Limits limits_of(const RouteRow& row, const cfgdb::Element& element) {
    const bool is_of_ont = !row.make_pre_hooks({}).empty();
    if (!is_of_ont) {
        return {element.depth, element.depth};
    }
    return element.depth == 1 ? Limits{2, any_number} : Limits{3, 3};
}

Json indices(const Limits& limits) {
    const Json item{{"type", "string"}, {"pattern", anchored("^[0-9]+(?:-[0-9]+)?(?:[,/][0-9]+(?:-[0-9]+)?)*$")}};
    Json schema{{"type", "array"}, {"items", item}, {"minItems", limits.least}};
    if (limits.most != any_number) {
        schema["maxItems"] = limits.most;
    }
    return schema;
}

Json config_types(const RouteRow& row) {
    return is_method(row, "get") || is_method(row, "call") ? Json{{"enum", {"candidate", "running"}}}
                                                           : Json{{"const", "candidate"}};
}

} // namespace

Json request_schema(const RouteRow& row, const RecordSchemas& records) {
    Json definitions = Json::object();
    Json properties{
        {"path", {{"const", row.path}}}, {"method", {{"const", row.method}}}, {"session_id", {{"type", "string"}}}};
    Json required{"path", "method"};
    const auto add = [&](const char* key, Json schema, bool is_required) {
        properties[key] = std::move(schema);
        if (is_required) {
            required.push_back(key);
        }
    };
    if (row.privilege > api_service::PrivilegeLevel::Nothing) {
        required.push_back("session_id");
    }
    const auto* const element = docs::element_of(row);
    const auto limits =
        element == nullptr ? limits_of(row.target.shape_at(row.path).indices) : limits_of(row, *element);
    if (limits.most > 0) {
        add("indices", indices(limits), limits.least > 0);
    }
    if (element != nullptr || row.target.shape_at(row.path).takes_config_type) {
        add("config_type", config_types(row), true);
    }
    if (const auto data = request_data(row, records, definitions)) {
        add("data", *data, !data->empty());
    }
    auto schema = closed_object(std::move(properties), std::move(required));
    Json whole{{"$schema", dialect},
               {"$id", urn("request", name_of(row))},
               {"title", fmt::format("Request to {} {}", row.method, row.path)},
               {"description", fmt::format("Needs the privilege {} or a higher one.", to_string(row.privilege))}};
    whole.update(schema);
    if (!definitions.empty()) {
        whole["$defs"] = std::move(definitions);
    }
    return whole;
}

} // namespace xpon::schemas
