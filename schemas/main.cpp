// Writes the JSON Schemas of the API, their index and the TypeScript declarations into a folder.
// usage: api_schemas FOLDER FOLDER-OF-RECORD-HEADERS

#include "schemas/answer_schema.hpp"
#include "schemas/request_schema.hpp"
#include "schemas/type_declarations.hpp"

#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>

namespace {

using namespace xpon;
using schemas::Json;
using schemas::Use;

class Folder {
public:
    explicit Folder(std::filesystem::path path) : path_(std::move(path)) {}

    void write(const std::string& name, const std::string& text) const {
        const auto file = path_ / name;
        std::filesystem::create_directories(file.parent_path());
        std::ofstream out(file);
        out << text << '\n';
        if (!out.flush()) {
            throw std::runtime_error("cannot write " + file.string());
        }
    }
    /// The name is given back, for the index.
    std::string write(const std::string& name, const Json& document) const {
        write(name, document.dump(1));
        return name;
    }

private:
    std::filesystem::path path_;
};

Json record_schema(const cfgdb::Element& element, Use use, const schemas::RecordSchemas& records) {
    Json definitions = Json::object();
    const auto name = records.define(element.table, use, definitions);
    const bool is_set = use == Use::set;
    const auto path = docs::full_path(element);
    return {{"$schema", schemas::dialect},
            {"$id", schemas::urn(is_set ? "set" : "element", path)},
            {"title", fmt::format("{} of {}", is_set ? "The data of a set" : "A record", path)},
            {"$ref", "#/$defs/" + name},
            {"$defs", std::move(definitions)}};
}

Json write_elements(const Folder& folder, const schemas::RecordSchemas& records) {
    Json index = Json::array();
    for (const auto& element : cfgdb::all_elements()) {
        const auto path = docs::full_path(element);
        index.push_back({{"path", path},
                         {"record", folder.write(fmt::format("elements/{}.json", path),
                                                 record_schema(element, Use::answer, records))},
                         {"data", folder.write(fmt::format("elements/{}.set.json", path),
                                               record_schema(element, Use::set, records))}});
    }
    return index;
}

Json write_routes(const Folder& folder, const schemas::RecordSchemas& records) {
    Json index = Json::array();
    for (const auto& row : api_service::route_table()) {
        const auto name = schemas::name_of(row);
        index.push_back({{"path", row.path},
                         {"method", row.method},
                         {"privilege", to_string(row.privilege)},
                         {"request", folder.write(fmt::format("requests/{}.json", name), request_schema(row, records))},
                         {"answer", folder.write(fmt::format("answers/{}.json", name), answer_schema(row, records))}});
    }
    return index;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::cerr << "usage: api_schemas FOLDER FOLDER-OF-RECORD-HEADERS\n";
        return 2;
    }
    try {
        const Folder folder(argv[1]);
        const docs::RecordComments comments(argv[2]);
        const schemas::RecordSchemas records(comments);
        const Json index{{"elements", write_elements(folder, records)}, {"routes", write_routes(folder, records)}};
        folder.write("olt_api.d.ts", type_declarations(records));
        folder.write("index.json", index);
    } catch (const std::exception& exception) {
        std::cerr << "api_schemas: " << exception.what() << '\n';
        return 1;
    }
}
