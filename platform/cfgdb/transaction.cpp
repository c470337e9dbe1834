#include "cfgdb/transaction.hpp"

#include "cfgdb/checksum.hpp"

#include <algorithm>
#include <cerrno>
#include <memory>
#include <system_error>
#include <utility>
#include <vector>

namespace xpon::cfgdb {
namespace {

MDB_val to_value(Bytes bytes) {
    return {bytes.size(), const_cast<std::byte*>(bytes.data())}; // LMDB only reads what it is given
}

Bytes to_bytes(const MDB_val& value) {
    return {static_cast<const std::byte*>(value.mv_data), value.mv_size};
}

Bytes require_sealed(Bytes key, Bytes sealed) {
    if (const auto value = unseal(key, sealed)) {
        return *value;
    }
    throw std::system_error(EIO, std::generic_category(), "The configuration database is damaged");
}

struct CursorCloser {
    void operator()(MDB_cursor* cursor) const {
        mdb_cursor_close(cursor);
    }
};

} // namespace

std::optional<Bytes> Transaction::find_sealed(Bytes key) const {
    auto key_value = to_value(key);
    MDB_val found{};
    const int status = mdb_get(transaction_, environment_.database(), &key_value, &found);
    if (status == MDB_NOTFOUND) {
        return {};
    }
    check_lmdb(status, "mdb_get");
    return to_bytes(found);
}

std::optional<Bytes> Transaction::get(Bytes key) const {
    const auto sealed = find_sealed(key);
    return sealed ? std::optional(require_sealed(key, *sealed)) : std::nullopt;
}

void Transaction::visit(Bytes prefix, Bytes from, const Visitor& visit) const {
    MDB_cursor* opened = nullptr;
    check_lmdb(mdb_cursor_open(transaction_, environment_.database(), &opened), "mdb_cursor_open");
    const std::unique_ptr<MDB_cursor, CursorCloser> cursor(opened);
    auto key = to_value(from);
    MDB_val value{};
    int status = mdb_cursor_get(opened, &key, &value, MDB_SET_RANGE);
    while (status == MDB_SUCCESS) {
        const auto key_bytes = to_bytes(key);
        if (key_bytes.size() < prefix.size() || !std::ranges::equal(key_bytes.first(prefix.size()), prefix) ||
            !visit(key_bytes, require_sealed(key_bytes, to_bytes(value)))) {
            return;
        }
        status = mdb_cursor_get(opened, &key, &value, MDB_NEXT);
    }
    if (status != MDB_NOTFOUND) {
        check_lmdb(status, "mdb_cursor_get");
    }
}

ReadTransaction::ReadTransaction(const Environment& environment)
    : Transaction(environment, environment.acquire_reader()) {}

ReadTransaction::~ReadTransaction() {
    environment_.release_reader(transaction_);
}

void ChangeableTransaction::erase_all(Bytes prefix) {
    std::vector<std::vector<std::byte>> keys;
    visit(prefix, prefix, [&](Bytes key, Bytes) {
        keys.emplace_back(key.begin(), key.end());
        return true;
    });
    for (const auto& key : keys) {
        erase(key);
    }
}

WriteTransaction::~WriteTransaction() {
    if (transaction_ != nullptr) {
        environment_.abort(transaction_);
    }
}

void WriteTransaction::put(Bytes key, Bytes value) {
    if (const auto old = find_sealed(key)) {
        sum_change_ -= share_of(*old);
    }
    const auto sealed = seal(key, value);
    sum_change_ += share_of(sealed);
    has_changed_ = true;
    write(key, sealed);
}

void WriteTransaction::erase(Bytes key) {
    const auto old = find_sealed(key);
    if (!old) {
        return;
    }
    sum_change_ -= share_of(*old);
    has_changed_ = true;
    auto key_value = to_value(key);
    check_lmdb(mdb_del(transaction_, environment_.database(), &key_value, nullptr), "mdb_del");
}

void WriteTransaction::write(Bytes key, Bytes sealed) {
    auto key_value = to_value(key);
    auto data = to_value(sealed);
    check_lmdb(mdb_put(transaction_, environment_.database(), &key_value, &data, 0), "mdb_put");
}

void WriteTransaction::write_seal() {
    const auto key = seal_key();
    const auto value = get(key);
    auto present = value ? read_seal(*value) : std::nullopt;
    const Seal next{.sum = (present ? present->sum : 0) + sum_change_, .transaction = mdb_txn_id(transaction_)};
    write(key, seal(key, std::as_bytes(std::span(&next, 1))));
}

void WriteTransaction::commit() {
    if (has_changed_) {
        write_seal();
    }
    environment_.commit(std::exchange(transaction_, nullptr));
}

} // namespace xpon::cfgdb
