#pragma once

#include "cfgdb/element.hpp"
#include "cfgdb/keys.hpp"
#include "cfgdb/transaction.hpp"

#include <optional>
#include <vector>

namespace xpon::cfgdb {

/// Says which layout a stored record has; see serializer/stamp.hpp.
using RecordStamp = std::uint64_t;

/// The value of a record's entry.
struct StoredRecord {
    RecordStamp stamp;
    Bytes record;
};

/// Empty for a value that is too short to be one.
std::optional<StoredRecord> split_record(Bytes value);

/// The records of the configuration as one transaction sees them. Running keeps only what differs from the factory
/// state, the candidate only what differs from running.
class Records {
public:
    explicit Records(const Transaction& transaction) : transaction_(transaction) {}

    /// The record of a store, or empty when the store has none. A record of another version of its type is a
    /// std::system_error ESTALE: that version has taken the database over.
    [[nodiscard]] std::optional<Bytes> find(Store store, const RecordId& id) const;

    [[nodiscard]] Bytes running(const RecordId& id) const;
    [[nodiscard]] Bytes candidate(const RecordId& id) const;

    template <class Record>
    [[nodiscard]] Record running(std::uint16_t first = 0, std::uint16_t second = 0) const {
        Record record;
        std::memcpy(&record, running(RecordId{element_of<Record>, {first, second}}).data(), sizeof(Record));
        return record;
    }

    /// The records that a store has, in the order of elements and indices.
    [[nodiscard]] std::vector<RecordId> list(Store store) const;

private:
    const Transaction& transaction_;
};

/// Changes to the records inside a transaction. Records must be canonical: equal contents, equal bytes.
class RecordWriter : public Records {
public:
    explicit RecordWriter(ChangeableTransaction& transaction) : Records(transaction), transaction_(transaction) {}

    /// Sets the record in the candidate. Set back to what runs, it is no change any more.
    void set_candidate(const RecordId& id, Bytes record);

    /// Moves one record from the candidate to running.
    void accept(const RecordId& id);
    /// Drops one record from the candidate.
    void reject(const RecordId& id);

private:
    void put(Store store, const RecordId& id, Bytes record);

    ChangeableTransaction& transaction_;
};

} // namespace xpon::cfgdb
