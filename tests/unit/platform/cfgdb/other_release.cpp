#include "tests/unit/platform/cfgdb/other_release.hpp"

#include "cfgdb/keys.hpp"
#include "serializer/cjson_tree.hpp"
#include "serializer/forgiving_json.hpp"
#include "serializer/object_json.hpp"
#include "serializer/stamp.hpp"
#include "serializer/table_description.hpp"

#include <algorithm>
#include <cstring>

namespace xpon::test {
namespace {

using cfgdb::Bytes;
using cfgdb::Store;

const serializer::Table& ont_table_of_this_release() {
    return cfgdb::element(cfgdb::element_of<cfgdb::PonOnt>).table;
}

serializer::Field& field_named(OtherRelease::Fields& fields, std::string_view key) {
    return *std::ranges::find(fields, key, [](const auto& field) { return std::string_view(field.key); });
}

Bytes bytes_of(const std::string& text) {
    return std::as_bytes(std::span(text));
}

} // namespace

OtherRelease::OtherRelease(const std::function<void(Fields&)>& alter)
    : fields_(ont_table_of_this_release().fields.begin(), ont_table_of_this_release().fields.end()),
      table_(ont_table_of_this_release()) {
    alter(fields_);
    std::uint32_t offset = 16;
    serializer::Stamp stamp;
    for (auto field = fields_.rbegin(); field != fields_.rend(); ++field) {
        field->offset = offset;
        offset += field->size + 1;
        stamp.add(*field);
    }
    table_.fields = fields_;
    table_.size = offset;
    table_.rules = nullptr;
    table_.stamp = stamp.value();
}

void OtherRelease::take_over(const cfgdb::Database& database, const std::function<void(cJSON&)>& change) const {
    cfgdb::in_write_transaction(database.environment(), [&](cfgdb::WriteTransaction& transaction) {
        cfgdb::RecordWriter writer(transaction);
        for (const auto store : {Store::running, Store::candidate}) {
            for (const auto& id : writer.list(store)) {
                if (id.element != cfgdb::element_of<cfgdb::PonOnt>) {
                    continue;
                }
                const auto present = *writer.find(store, id);
                const std::vector<std::byte> aligned(present.begin(), present.end());
                const auto data = serializer::owned(cJSON_CreateObject());
                serializer::FieldErrors errors;
                write_object(ont_table_of_this_release(), aligned.data(), *data, errors, nullptr);
                change(*data);
                std::vector<std::byte> value(sizeof(table_.stamp) + table_.size);
                std::memcpy(value.data(), &table_.stamp, sizeof(table_.stamp));
                std::vector<std::byte> record(table_.size);
                serializer::read_what_fits(table_, *data, record.data());
                std::ranges::copy(record, value.begin() + sizeof(table_.stamp));
                transaction.put(record_key(store, id), value);
            }
        }
        transaction.put(cfgdb::Key(Store::meta).add("layout").add(table_.stamp),
                        bytes_of(serializer::describe(table_)));
        transaction.put(cfgdb::Key(Store::meta).add("filled"), bytes_of("another release"));
        transaction.commit();
    });
}

void add_colour(OtherRelease::Fields& fields) {
    auto colour = field_named(fields, "enabled");
    colour.key = "colour";
    fields.push_back(colour);
}

void drop_description(OtherRelease::Fields& fields) {
    fields.erase(fields.begin() + (&field_named(fields, "description") - fields.data()));
}

void widen_description(OtherRelease::Fields& fields) {
    auto& description = field_named(fields, "description");
    description.size = 128;
    description.max = 127;
}

} // namespace xpon::test
