#include "schemas/answer_schema.hpp"

#include "docs/error_texts.hpp"

namespace xpon::schemas {
namespace {

Json error() {
    const Json parameters{{"type", "object"},
                          {"patternProperties", {{"^p[0-9]+$", {{"type", {"string", "number"}}}}}},
                          {"additionalProperties", false}};
    const Json key{
        {"type", "string"}, {"enum", error_texts()}, {"description", "{p0} and so on stand for the parameters"}};
    const Json path{{"type", "string"},
                    {"description", "what it is about: a route, a record, or the key path of a field"}};
    return closed_object(
        {{"message", closed_object({{"key", key}, {"params", parameters}}, {"key", "params"})}, {"path", path}},
        {"message", "path"});
}

Json errors() {
    return {{"type", "array"}, {"items", reference("ApiError")}, {"minItems", 1}};
}

Json session_id() {
    return {{"type", "string"}, {"description", "the session of the request, or empty"}};
}

Json accepted(const RouteRow& row, const std::optional<Json>& data) {
    Json properties{{"success", {{"const", true}}}, {"session_id", session_id()}};
    Json required{"success", "session_id"};
    if (data) {
        properties["data"] = reference("data");
        if (!data->empty()) { // what may be anything may also be missing
            required.push_back("data");
        }
    }
    if (docs::element_of(row) == nullptr && row.target.shape_at(row.path).has_errors_with_success) {
        properties["errors"] = errors();
    }
    return closed_object(std::move(properties), std::move(required));
}

Json refused() {
    return closed_object({{"success", {{"const", false}}}, {"session_id", session_id()}, {"errors", errors()}},
                         {"success", "session_id", "errors"});
}

} // namespace

Json error_texts() {
    Json texts = Json::array();
    for (const auto& [index, text] : docs::error_texts()) {
        texts.push_back(text);
    }
    return texts;
}

Json answer_schema(const RouteRow& row, const RecordSchemas& records) {
    Json parts = Json::object();
    const auto data = answer_data(row, records, parts);
    Json definitions{{"accepted", accepted(row, data)}, {"refused", refused()}, {"ApiError", error()}};
    if (data) {
        definitions["data"] = *data;
    }
    definitions.update(parts);
    return {{"$schema", dialect},
            {"$id", urn("answer", name_of(row))},
            {"title", fmt::format("Answer to {} {}", row.method, row.path)},
            {"anyOf", {reference("accepted"), reference("refused")}},
            {"$defs", std::move(definitions)}};
}

} // namespace xpon::schemas
