// Every record type's deserialiser. The first byte of the input chooses the type, the rest is the JSON text. What is
// accepted must come back from its own text as the same record.
#include "cfgdb/element.hpp"
#include "serializer/cjson_tree.hpp"
#include "serializer/record_json.hpp"

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

namespace {

using xpon::serializer::Table;
using xpon::serializer::Tree;
using Record = std::vector<std::byte>;

void expect(bool condition) {
    if (!condition) {
        std::abort();
    }
}

std::string printed(const cJSON& tree) {
    const xpon::core::JsonText text(cJSON_Print(&tree));
    expect(text != nullptr);
    return text.get();
}

/// True when the data is accepted.
bool read(const Table& table, const cJSON* data, Record& record) {
    cJSON* errors = nullptr;
    expect(xpon::serializer::deserialize_record(table, data, record.data(), &errors) == 0);
    const Tree owner(errors);
    if (errors != nullptr) {
        expect(Tree(cJSON_Parse(printed(*errors).c_str())) != nullptr);
    }
    return errors == nullptr;
}

} // namespace

// NOLINTNEXTLINE(readability-identifier-naming): the name is libFuzzer's
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* input, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    const auto elements = xpon::cfgdb::all_elements();
    const auto& table = elements[input[0] % elements.size()].table;
    const Tree data(cJSON_ParseWithLength(reinterpret_cast<const char*>(input + 1), size - 1));
    Record record(table.size);
    if (!read(table, data.get(), record)) {
        return 0;
    }
    const Tree target(cJSON_CreateObject());
    cJSON* errors = nullptr;
    expect(xpon::serializer::serialize_record(table, record.data(), target.get(), &errors) == 0 && errors == nullptr);
    Record again(table.size);
    expect(read(table, Tree(cJSON_Parse(printed(*target).c_str())).get(), again));
    expect(record == again);
    return 0;
}
