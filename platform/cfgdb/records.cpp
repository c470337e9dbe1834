#include "cfgdb/records.hpp"

#include "cfgdb/factory.hpp"
#include "xpon/peer_side/database_log.hpp"

#include <algorithm>
#include <set>

namespace xpon::cfgdb {
namespace {

using Stamp = std::uint64_t;

void report_foreign_record(ElementId id) {
    static std::set<ElementId> reported;
    if (reported.insert(id).second) {
        core::log(database_log(), core::LogLevel::Warning,
                  "Records of {} were stored by another version and read as factory state", element(id).suffix);
    }
}

/// Whether the value was stored by a version with another description of the record.
bool is_foreign(const Element& row, Bytes value) {
    Stamp stamp = 0;
    if (value.size() == sizeof(Stamp) + row.table.size) {
        std::memcpy(&stamp, value.data(), sizeof(Stamp));
    }
    return stamp != row.table.stamp;
}

} // namespace

std::optional<Bytes> Records::find(Store store, const RecordId& id) const {
    const auto value = transaction_.get(record_key(store, id));
    if (!value) {
        return {};
    }
    if (is_foreign(element(id.element), *value)) {
        report_foreign_record(id.element);
        return factory_record(id);
    }
    return value->subspan(sizeof(Stamp));
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

void RecordWriter::drop_foreign(Store store) {
    std::vector<std::vector<std::byte>> keys;
    const Key prefix(store);
    transaction_.visit(prefix, prefix, [&](Bytes key, Bytes value) {
        const auto id = record_of(key);
        if (!id || is_foreign(element(id->element), value)) {
            keys.emplace_back(key.begin(), key.end());
            if (id) {
                report_foreign_record(id->element);
            }
        }
        return true;
    });
    for (const auto& key : keys) {
        transaction_.erase(key);
    }
}

void RecordWriter::put(Store store, const RecordId& id, Bytes record) {
    std::vector<std::byte> value(sizeof(Stamp) + record.size());
    std::memcpy(value.data(), &element(id.element).table.stamp, sizeof(Stamp));
    std::ranges::copy(record, value.begin() + sizeof(Stamp));
    transaction_.put(record_key(store, id), value);
}

} // namespace xpon::cfgdb
