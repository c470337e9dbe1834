#include "cfgdb/transaction.hpp"

#include <algorithm>
#include <memory>
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

struct CursorCloser {
    void operator()(MDB_cursor* cursor) const {
        mdb_cursor_close(cursor);
    }
};

} // namespace

std::optional<Bytes> Transaction::get(Bytes key) const {
    auto key_value = to_value(key);
    MDB_val found{};
    const int status = mdb_get(transaction_, environment_.database(), &key_value, &found);
    if (status == MDB_NOTFOUND) {
        return {};
    }
    check_lmdb(status, "mdb_get");
    return to_bytes(found);
}

void Transaction::visit(Bytes prefix, Bytes from, const std::function<bool(Bytes key, Bytes value)>& visit) const {
    MDB_cursor* opened = nullptr;
    check_lmdb(mdb_cursor_open(transaction_, environment_.database(), &opened), "mdb_cursor_open");
    const std::unique_ptr<MDB_cursor, CursorCloser> cursor(opened);
    auto key = to_value(from);
    MDB_val value{};
    int status = mdb_cursor_get(opened, &key, &value, MDB_SET_RANGE);
    while (status == MDB_SUCCESS) {
        const auto key_bytes = to_bytes(key);
        if (key_bytes.size() < prefix.size() || !std::ranges::equal(key_bytes.first(prefix.size()), prefix) ||
            !visit(key_bytes, to_bytes(value))) {
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

WriteTransaction::WriteTransaction(const Environment& environment)
    : Transaction(environment, environment.begin_writing()) {}

WriteTransaction::~WriteTransaction() {
    if (transaction_ != nullptr) {
        environment_.abort(transaction_);
    }
}

void WriteTransaction::put(Bytes key, Bytes value) {
    auto key_value = to_value(key);
    auto data = to_value(value);
    check_lmdb(mdb_put(transaction_, environment_.database(), &key_value, &data, 0), "mdb_put");
}

void WriteTransaction::erase(Bytes key) {
    auto key_value = to_value(key);
    const int status = mdb_del(transaction_, environment_.database(), &key_value, nullptr);
    if (status != MDB_NOTFOUND) {
        check_lmdb(status, "mdb_del");
    }
}

void WriteTransaction::erase_all(Bytes prefix) {
    std::vector<std::vector<std::byte>> keys;
    visit(prefix, prefix, [&](Bytes key, Bytes) {
        keys.emplace_back(key.begin(), key.end());
        return true;
    });
    for (const auto& key : keys) {
        erase(key);
    }
}

void WriteTransaction::commit() {
    environment_.commit(std::exchange(transaction_, nullptr));
}

} // namespace xpon::cfgdb
