#include "schemas/type_declarations.hpp"

#include "schemas/answer_schema.hpp"
#include "schemas/request_schema.hpp"
#include "schemas/route_data.hpp"
#include "schemas/typescript.hpp"

#include <map>
#include <string_view>
#include <vector>

namespace xpon::schemas {
namespace {

constexpr std::string_view introduction =
    R"(// The OLT's management API. Made by the build from the tables that the daemon works with; do not edit.
// Limits, defaults and patterns for forms are in the JSON Schemas beside this file.

export type ConfigType = "candidate" | "running";
export type Privilege = "nothing" | "viewer" | "operator" | "administrator";

)";

constexpr std::string_view generic_types = R"(
export interface ApiError {
  message: { key: ErrorText; params: { [parameter: `p${number}`]: string | number } };
  /** what it is about: a route, a record, or the key path of a field */
  path: string;
}
export interface Accepted<Data> {
  success: true;
  /** the session of the request, or empty */
  session_id: string;
  data: Data;
  /** of a commit: why nothing was committed */
  errors?: ApiError[];
}
export interface Refused {
  success: false;
  session_id: string;
  errors: ApiError[];
  data?: undefined;
}

export type Path = keyof Routes;
export type Method<P extends Path> = keyof Routes[P] & string;
/** A request, but for path, method and session. */
export type Parameters<P extends Path, M extends Method<P>> = Routes[P][M] extends { request: infer R } ? R : never;
/** The data of an answer. */
export type Data<P extends Path, M extends Method<P>> = Routes[P][M] extends { data: infer D } ? D : never;
export type Request<P extends Path, M extends Method<P>> = { path: P; method: M; session_id?: string } & Parameters<P, M>;
export type Answer<P extends Path, M extends Method<P>> = Accepted<Data<P, M>> | Refused;
)";

/// What a request has beyond path, method and session.
std::string parameters(const Json& request, std::size_t indentation) {
    Json rest{{"type", "object"}, {"properties", Json::object()}, {"required", request.at("required")}};
    for (const auto& [key, schema] : request.at("properties").items()) {
        if (key != "path" && key != "method" && key != "session_id") {
            rest["properties"][key] = schema;
        }
    }
    return rest["properties"].empty() ? "{}" : type_of(rest, indentation);
}

std::string route(const RouteRow& row, const RecordSchemas& records) {
    Json definitions;
    const auto data = answer_data(row, records, definitions);
    return fmt::format("    /** Needs the privilege {}. */\n    {}: {{\n      request: {};\n      data: {};\n    }};\n",
                       to_string(row.privilege), row.method, parameters(request_schema(row, records), 6),
                       data ? type_of(*data, 6) : "undefined");
}

std::string routes(const RecordSchemas& records) {
    std::vector<std::string> paths; // in the order of the table
    std::map<std::string, std::string> methods;
    for (const auto& row : api_service::route_table()) {
        if (!methods.contains(row.path)) {
            paths.emplace_back(row.path);
        }
        methods[row.path] += route(row, records);
    }
    std::string text = "\n/** What each route takes and gives, by path and method. */\nexport interface Routes {\n";
    for (const auto& path : paths) {
        text += fmt::format("  \"{}\": {{\n{}  }};\n", path, methods[path]);
    }
    return text + "}\n";
}

/// Records by the path of their element: as they are read, and as they are written.
std::string elements(const RecordSchemas& records) {
    std::string text = "\n/** The elements of the configuration: their records, and the data that sets one. */\n"
                       "export interface Elements {\n";
    for (const auto& element : cfgdb::all_elements()) {
        Json ignored;
        text += fmt::format("  \"{}\": {{ record: {}; data: {} }};\n", docs::full_path(element),
                            records.define(element.table, Use::answer, ignored),
                            records.define(element.table, Use::set, ignored));
    }
    return text + "}\n";
}

} // namespace

std::string type_declarations(const RecordSchemas& records) {
    Json definitions = Json::object();
    for (const auto& element : cfgdb::all_elements()) {
        records.define(element.table, Use::answer, definitions);
        records.define(element.table, Use::set, definitions);
    }
    for (const auto& row : api_service::route_table()) {
        answer_data(row, records, definitions);
        request_data(row, records, definitions);
    }
    std::string text(introduction);
    for (const auto& [name, schema] : definitions.items()) {
        text += declaration(name, schema);
    }
    text += declaration("ErrorText", {{"enum", error_texts()}});
    return text + elements(records) + routes(records) + std::string(generic_types);
}

} // namespace xpon::schemas
