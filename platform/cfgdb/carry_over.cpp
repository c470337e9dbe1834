#include "cfgdb/carry_over.hpp"

#include "cfgdb/keys.hpp"
#include "serializer/cjson_tree.hpp"
#include "serializer/forgiving_json.hpp"
#include "serializer/object_json.hpp"
#include "serializer/table_description.hpp"

#include <cstring>
#include <map>
#include <optional>

#include <fmt/format.h>

namespace xpon::cfgdb {
namespace {

using serializer::DescribedTable;

Key layout_key(RecordStamp stamp) {
    return Key(Store::meta).add("layout").add(stamp);
}

class ForeignReader {
public:
    ForeignReader(const Transaction& transaction, StartReport& report) : transaction_(transaction), report_(report) {}

    void read(Bytes key, Bytes value) {
        const auto id = record_of(key);
        if (!id || id->indices[0] >= element(id->element).sizes[0] || id->indices[1] >= element(id->element).sizes[1]) {
            ++strangers_;
            return;
        }
        const auto stored = split_record(value);
        const auto* const layout = stored ? layout_of(stored->stamp) : nullptr;
        if (layout == nullptr || layout->table().size != stored->record.size()) {
            return report_.add(*id, "left out: it is stored in a form that nothing describes");
        }
        convert(*id, layout->table(), stored->record);
    }

    RecordList take_records() {
        if (strangers_ > 0) {
            report_.add(fmt::format("{} records are of elements that this version does not have", strangers_));
        }
        return std::move(records_);
    }

private:
    void convert(const RecordId& id, const serializer::Table& layout, Bytes stored) {
        const std::vector<std::byte> aligned(stored.begin(), stored.end());
        auto data = serializer::owned(cJSON_CreateObject());
        serializer::FieldErrors unwritable; // its field is missing then
        serializer::write_object(layout, aligned.data(), *data, unwritable, nullptr);
        const auto& table = element(id.element).table;
        std::vector<std::byte> record(table.size);
        for (const auto& line : serializer::read_what_fits(table, *data, record.data())) {
            report_.add(id, line);
        }
        records_.emplace_back(id, std::move(record));
    }

    /// Null when nothing describes it.
    const DescribedTable* layout_of(RecordStamp stamp) {
        const auto [known, is_new] = layouts_.try_emplace(stamp);
        if (is_new) {
            if (const auto text = transaction_.get(layout_key(stamp))) {
                known->second = DescribedTable::parse({reinterpret_cast<const char*>(text->data()), text->size()});
            }
        }
        return known->second ? &*known->second : nullptr;
    }

    const Transaction& transaction_;
    StartReport& report_;
    std::map<RecordStamp, std::optional<DescribedTable>> layouts_;
    RecordList records_;
    std::size_t strangers_ = 0;
};

} // namespace

void put_layouts(WriteTransaction& transaction) {
    transaction.erase_all(Key(Store::meta).add("layout"));
    for (const auto& row : all_elements()) {
        const auto text = serializer::describe(row.table);
        transaction.put(layout_key(row.table.stamp), std::as_bytes(std::span(text)));
    }
}

RecordList read_foreign_records(const Transaction& transaction, Store store, StartReport& report) {
    ForeignReader reader(transaction, report);
    const Key prefix(store);
    transaction.visit(prefix, prefix, [&](Bytes key, Bytes value) {
        reader.read(key, value);
        return true;
    });
    return reader.take_records();
}

} // namespace xpon::cfgdb
