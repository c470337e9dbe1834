#pragma once

#include "cfgdb/environment.hpp"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>

namespace xpon::cfgdb {

using Bytes = std::span<const std::byte>;

/// One consistent view of the database. Spans that it gives out are valid until its next write and its end. A value
/// whose checksum is wrong is a std::system_error EIO.
class Transaction {
public:
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

    [[nodiscard]] std::optional<Bytes> get(Bytes key) const;

    /// Calls `visit` for the entries whose keys are `from` or greater and start with `prefix`, in the order of keys,
    /// until it returns false. It must not write.
    void visit(Bytes prefix, Bytes from, const std::function<bool(Bytes key, Bytes value)>& visit) const;

protected:
    /// The value as it is stored, with its checksum.
    [[nodiscard]] std::optional<Bytes> find_sealed(Bytes key) const;

    Transaction(const Environment& environment, MDB_txn* transaction)
        : environment_(environment), transaction_(transaction) {}
    ~Transaction() = default;

    const Environment& environment_;
    MDB_txn* transaction_;
};

class ReadTransaction : public Transaction {
public:
    explicit ReadTransaction(const Environment& environment);
    ~ReadTransaction();
};

/// There is one at a time, in all processes together; the next waits, but not for ever: std::system_error ETIMEDOUT.
/// Without commit() nothing happens.
class WriteTransaction : public Transaction {
public:
    explicit WriteTransaction(const Environment& environment);
    ~WriteTransaction();

    void put(Bytes key, Bytes value);
    /// Nothing happens when there is no such entry.
    void erase(Bytes key);
    /// Erases every entry whose key starts with `prefix`.
    void erase_all(Bytes prefix);
    void commit();

private:
    void write(Bytes key, Bytes sealed);
    void write_seal();

    std::uint64_t sum_change_ = 0; ///< of the shares of all entries, modulo 2^64
    bool has_changed_ = false;
};

} // namespace xpon::cfgdb
