#pragma once

#include "cfgdb/environment.hpp"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <type_traits>
#include <utility>

namespace xpon::cfgdb {

using Bytes = std::span<const std::byte>;

/// One consistent view of the database. Spans that it gives out are valid until its next write and its end. A value
/// whose checksum is wrong is a std::system_error EIO.
class Transaction {
public:
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

    [[nodiscard]] virtual std::optional<Bytes> get(Bytes key) const;

    /// Is given entry after entry, until it returns false. It must not write.
    using Visitor = std::function<bool(Bytes key, Bytes value)>;
    /// Calls `visit` for the entries whose keys are `from` or greater and start with `prefix`, in the order of keys.
    virtual void visit(Bytes prefix, Bytes from, const Visitor& visit) const;

protected:
    /// The value as it is stored, with its checksum.
    [[nodiscard]] std::optional<Bytes> find_sealed(Bytes key) const;

    Transaction(const Environment& environment, MDB_txn* transaction)
        : environment_(environment), transaction_(transaction) {}
    ~Transaction() = default;

    const Environment& environment_;
    MDB_txn* transaction_;
};

class ReadTransaction final : public Transaction {
public:
    explicit ReadTransaction(const Environment& environment);
    ~ReadTransaction();
};

/// A view that shows what is changed in it.
class ChangeableTransaction : public Transaction {
public:
    virtual void put(Bytes key, Bytes value) = 0;
    /// Nothing happens when there is no such entry.
    virtual void erase(Bytes key) = 0;
    /// Erases every entry whose key starts with `prefix`.
    void erase_all(Bytes prefix);

protected:
    using Transaction::Transaction;
    ~ChangeableTransaction() = default;
};

/// There is one at a time, in all processes together. Without commit() nothing happens.
class WriteTransaction final : public ChangeableTransaction {
public:
    /// Takes over what Environment::write() gave.
    WriteTransaction(const Environment& environment, MDB_txn* transaction)
        : ChangeableTransaction(environment, transaction) {}
    ~WriteTransaction();

    void put(Bytes key, Bytes value) override;
    void erase(Bytes key) override;
    void commit();

private:
    void write(Bytes key, Bytes sealed);
    void write_seal();

    std::uint64_t sum_change_ = 0; ///< of the shares of all entries, modulo 2^64
    bool has_changed_ = false;
};

/// The outcome of `work`, which is called with a WriteTransaction, in another thread, while the caller waits; it must
/// not begin any other. Waits for its turn, but not for ever: std::system_error ETIMEDOUT.
template <class Work>
std::invoke_result_t<Work, WriteTransaction&> in_write_transaction(const Environment& environment, const Work& work) {
    using Outcome = std::invoke_result_t<Work, WriteTransaction&>;
    if constexpr (std::is_void_v<Outcome>) {
        environment.write([&](MDB_txn* begun) {
            WriteTransaction transaction(environment, begun);
            work(transaction);
        });
    } else {
        std::optional<Outcome> outcome;
        environment.write([&](MDB_txn* begun) {
            WriteTransaction transaction(environment, begun);
            outcome.emplace(work(transaction));
        });
        return *std::move(outcome);
    }
}

} // namespace xpon::cfgdb
