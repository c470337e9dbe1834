#include "cfgdb/factory.hpp"

#include "cfgdb/factory_contents.hpp"
#include "serializer/object_json.hpp"
#include "serializer/record_json.hpp"

#include <cassert>
#include <map>
#include <vector>

namespace xpon::cfgdb {
namespace {

using Record = std::vector<std::byte>;

struct Factory {
    std::vector<Record> defaults; ///< by element
    std::map<RecordId, Record> contents;
};

Record read_content(const FactoryContent& content) {
    const auto& table = element(content.element).table;
    const auto data = serializer::owned(cJSON_Parse(content.json));
    Record record(table.size);
    cJSON* errors = nullptr;
    if (serializer::deserialize_record(table, data.get(), record.data(), &errors) != 0) {
        throw std::bad_alloc();
    }
    assert(errors == nullptr);
    return record;
}

Factory make_factory() {
    Factory factory;
    for (const auto& row : all_elements()) {
        serializer::set_defaults(row.table, factory.defaults.emplace_back(row.table.size).data());
    }
    for (const auto& content : factory_contents()) {
        const auto index = static_cast<std::uint16_t>(content.number - 1);
        factory.contents.emplace(RecordId{content.element, {index, 0}}, read_content(content));
    }
    return factory;
}

} // namespace

Bytes factory_record(const RecordId& id) {
    static const auto factory = make_factory();
    const auto content = factory.contents.find(id);
    return content != factory.contents.end() ? content->second : factory.defaults[static_cast<std::size_t>(id.element)];
}

} // namespace xpon::cfgdb
