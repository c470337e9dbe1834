#include "cfgdb/factory.hpp"

#include "serializer/object_json.hpp"

#include <vector>

namespace xpon::cfgdb {
namespace {

using Record = std::vector<std::byte>;

std::vector<Record> make_defaults() {
    std::vector<Record> defaults;
    for (const auto& element : all_elements()) {
        serializer::set_defaults(element.table, defaults.emplace_back(element.table.size).data());
    }
    return defaults;
}

} // namespace

Bytes factory_record(const RecordId& id) {
    static const auto defaults = make_defaults();
    return defaults[static_cast<std::size_t>(id.element)];
}

} // namespace xpon::cfgdb
