#include "tests/unit/platform/cfgdb/failing_calls.hpp"

#include <cerrno>

#include <sys/types.h>

#include <lmdb.h>

namespace xpon::test {
namespace {

int calls_left = 0; // 0 = none fails
const char* failed_call = nullptr;

bool fails(const char* name) {
    if (calls_left == 0 || --calls_left > 0) {
        return false;
    }
    failed_call = name;
    errno = EIO;
    return true;
}

} // namespace

FailingCall::FailingCall(int nth) {
    failed_call = nullptr;
    calls_left = nth;
}

FailingCall::~FailingCall() {
    calls_left = 0;
}

const char* FailingCall::failed() {
    return failed_call;
}

} // namespace xpon::test

// NOLINTBEGIN: the names and the form are the linker's
#define WRAP(type, name, parameters, arguments, failure)                                                               \
    extern "C" type __real_##name parameters;                                                                          \
    extern "C" type __wrap_##name parameters {                                                                         \
        return xpon::test::fails(#name) ? (failure) : __real_##name arguments;                                         \
    }

WRAP(ssize_t, read, (int fd, void* buffer, size_t size), (fd, buffer, size), -1)
WRAP(ssize_t, write, (int fd, const void* buffer, size_t size), (fd, buffer, size), -1)
WRAP(int, fsync, (int fd), (fd), -1)
WRAP(int, flock, (int fd, int operation), (fd, operation), -1)
WRAP(int, link, (const char* from, const char* to), (from, to), -1)
WRAP(int, linkat, (int from_fd, const char* from, int to_fd, const char* to, int flags),
     (from_fd, from, to_fd, to, flags), -1)
WRAP(int, unlink, (const char* path), (path), -1)
WRAP(int, rename, (const char* from, const char* to), (from, to), -1)
WRAP(int, mkdir, (const char* path, mode_t mode), (path, mode), -1)
WRAP(int, posix_fallocate, (int fd, off_t offset, off_t size), (fd, offset, size), EIO)
WRAP(int, pipe2, (int* ends, int flags), (ends, flags), -1)
WRAP(pid_t, fork, (), (), -1)
WRAP(int, mdb_env_create, (MDB_env * *environment), (environment), ENOMEM)
WRAP(int, mdb_env_set_mapsize, (MDB_env * environment, size_t size), (environment, size), EIO)
WRAP(int, mdb_env_open, (MDB_env * environment, const char* path, unsigned flags, mdb_mode_t mode),
     (environment, path, flags, mode), EIO)
WRAP(int, mdb_reader_check, (MDB_env * environment, int* dead), (environment, dead), EIO)
WRAP(int, mdb_txn_begin, (MDB_env * environment, MDB_txn* parent, unsigned flags, MDB_txn** transaction),
     (environment, parent, flags, transaction), EIO)
WRAP(int, mdb_txn_renew, (MDB_txn * transaction), (transaction), EIO)
WRAP(int, mdb_txn_commit, (MDB_txn * transaction), (transaction), (mdb_txn_abort(transaction), EIO))
WRAP(int, mdb_dbi_open, (MDB_txn * transaction, const char* name, unsigned flags, MDB_dbi* database),
     (transaction, name, flags, database), EIO)
WRAP(int, mdb_get, (MDB_txn * transaction, MDB_dbi database, MDB_val* key, MDB_val* data),
     (transaction, database, key, data), EIO)
WRAP(int, mdb_put, (MDB_txn * transaction, MDB_dbi database, MDB_val* key, MDB_val* data, unsigned flags),
     (transaction, database, key, data, flags), EIO)
WRAP(int, mdb_del, (MDB_txn * transaction, MDB_dbi database, MDB_val* key, MDB_val* data),
     (transaction, database, key, data), EIO)
WRAP(int, mdb_cursor_open, (MDB_txn * transaction, MDB_dbi database, MDB_cursor** cursor),
     (transaction, database, cursor), EIO)
WRAP(int, mdb_cursor_get, (MDB_cursor * cursor, MDB_val* key, MDB_val* data, MDB_cursor_op operation),
     (cursor, key, data, operation), EIO)
// NOLINTEND
