#include "cfgdb/records.hpp"

#include "cfgdb/factory.hpp"

#include <algorithm>
#include <cerrno>
#include <system_error>

#include <fmt/format.h>

namespace xpon::cfgdb {
std::optional<StoredRecord> split_record(Bytes value) {
    RecordStamp stamp = 0;
    if (value.size() < sizeof(stamp)) {
        return {};
    }
    std::memcpy(&stamp, value.data(), sizeof(stamp));
    return StoredRecord{stamp, value.subspan(sizeof(stamp))};
}

std::optional<Bytes> Records::find(Store store, const RecordId& id) const {
    const auto value = transaction_.get(record_key(store, id));
    if (!value) {
        return {};
    }
    const auto& row = element(id.element);
    const auto stored = split_record(*value);
    if (!stored || stored->stamp != row.table.stamp || stored->record.size() != row.table.size) {
        throw std::system_error(ESTALE, std::generic_category(),
                                fmt::format("Another version of this program took over the records of {}; this one "
                                            "reads them after a restart",
                                            row.suffix));
    }
    return stored->record;
}

Bytes Records::running(const RecordId& id) const {
    const auto found = find(Store::running, id);
    return found ? *found : factory_record(id);
}

Bytes Records::candidate(const RecordId& id) const {
    const auto found = find(Store::candidate, id);
    return found ? *found : running(id);
}

std::vector<RecordId> Records::list(Store store) const {
    std::vector<RecordId> ids;
    const Key prefix(store);
    transaction_.visit(prefix, prefix, [&](Bytes key, Bytes) {
        if (const auto id = record_of(key)) {
            ids.push_back(*id);
        }
        return true;
    });
    return ids;
}

void RecordWriter::set_candidate(const RecordId& id, Bytes record) {
    if (std::ranges::equal(record, running(id))) {
        return reject(id);
    }
    put(Store::candidate, id, record);
}

void RecordWriter::accept(const RecordId& id) {
    const auto record = candidate(id);
    if (std::ranges::equal(record, factory_record(id))) {
        transaction_.erase(record_key(Store::running, id));
    } else {
        put(Store::running, id, record);
    }
    reject(id);
}

void RecordWriter::reject(const RecordId& id) {
    transaction_.erase(record_key(Store::candidate, id));
}

void RecordWriter::put(Store store, const RecordId& id, Bytes record) {
    std::vector<std::byte> value(sizeof(RecordStamp) + record.size());
    std::memcpy(value.data(), &element(id.element).table.stamp, sizeof(RecordStamp));
    std::ranges::copy(record, value.begin() + sizeof(RecordStamp));
    transaction_.put(record_key(store, id), value);
}

} // namespace xpon::cfgdb
