#include "cfgdb/environment.hpp"

#include "cfgdb/file_descriptor.hpp"
#include "cfgdb/soundness.hpp"

#include <cerrno>
#include <chrono>
#include <filesystem>
#include <stdexcept>
#include <system_error>
#include <utility>

#include <sys/stat.h>

#include <fcntl.h>
#include <fmt/format.h>

namespace xpon::cfgdb {
namespace {

constexpr mode_t folder_mode = 0700;
/// Others look through the database and read saved files meanwhile.
constexpr std::chrono::seconds longest_wait_for_opening{10};
/// Room for LMDB's table of readers.
constexpr off_t lock_file_size = off_t{16} << 10U;

int errno_of(int status) {
    if (status == MDB_MAP_FULL || status == MDB_TXN_FULL) {
        return ENOSPC;
    }
    return status == ENOMEM || status == ENOSPC || status == EACCES || status == ENOENT ? status : EIO;
}

void make_folder(const std::filesystem::path& folder) {
    if (folder.has_parent_path()) {
        std::filesystem::create_directories(folder.parent_path());
    }
    if (mkdir(folder.c_str(), folder_mode) != 0 && errno != EEXIST) {
        throw std::system_error(errno, std::generic_category(), "the folder cannot be made");
    }
}

void remove_files(const std::filesystem::path& folder) {
    std::filesystem::remove(folder / "data.mdb");
    std::filesystem::remove(folder / "lock.mdb");
}

/// LMDB maps this file before anything is in it: on a file system that is full by then, the first use of a page would
/// be a signal. One that others have mapped keeps its size.
void reserve_lock_file(const std::filesystem::path& folder) {
    const FileDescriptor file(folder / "lock.mdb", O_RDWR | O_CREAT);
    file.require_regular();
    file.reserve(file.size() > 0 ? file.size() : lock_file_size);
}

} // namespace

void check_lmdb(int status, const char* step) {
    if (status != MDB_SUCCESS) {
        throw std::system_error(errno_of(status), std::generic_category(),
                                fmt::format("{}: {}", step, mdb_strerror(status)));
    }
}

Environment::Environment(const std::string& folder) {
    try {
        open(folder);
    } catch (const std::exception& error) {
        throw std::runtime_error(fmt::format("Configuration database {} cannot be opened: {}", folder, error.what()));
    }
}

Environment::~Environment() {
    if (idle_reader_ != nullptr) {
        mdb_txn_abort(idle_reader_);
    }
}

void Environment::open_files(const std::string& folder) {
    MDB_env* created = nullptr;
    check_lmdb(mdb_env_create(&created), "mdb_env_create");
    environment_.reset(created);
    check_lmdb(mdb_env_set_mapsize(created, map_size), "mdb_env_set_mapsize");
    check_lmdb(mdb_env_open(created, folder.c_str(), open_flags, file_mode), "mdb_env_open");
}

void Environment::open(const std::string& folder) {
    make_folder(folder);
    // Nobody opens the files while somebody else finds that they must go.
    const FolderLock lock(folder, longest_wait_for_opening);
    reserve_lock_file(folder);
    if (const auto damage = find_damage(folder)) {
        damage_ = *damage;
        remove_files(folder);
        reserve_lock_file(folder);
    }
    open_files(folder);
    // A process that was killed while it read leaves its reader slot, and the slot keeps old pages from reuse.
    int cleared = 0;
    check_lmdb(mdb_reader_check(environment_.get(), &cleared), "mdb_reader_check");
    auto* const reader = acquire_reader();
    const int status = mdb_dbi_open(reader, nullptr, 0, &database_);
    // The handle stays valid only when the transaction that opened it commits.
    check_lmdb(status == MDB_SUCCESS ? mdb_txn_commit(reader) : (mdb_txn_abort(reader), status), "mdb_dbi_open");
}

MDB_txn* Environment::acquire_reader() const {
    if (auto* const reader = std::exchange(idle_reader_, nullptr)) {
        if (mdb_txn_renew(reader) == MDB_SUCCESS) {
            return reader;
        }
        mdb_txn_abort(reader);
    }
    MDB_txn* reader = nullptr;
    check_lmdb(mdb_txn_begin(environment_.get(), nullptr, MDB_RDONLY, &reader), "mdb_txn_begin");
    return reader;
}

void Environment::release_reader(MDB_txn* reader) const {
    if (idle_reader_ != nullptr) {
        return mdb_txn_abort(reader);
    }
    mdb_txn_reset(reader);
    idle_reader_ = reader;
}

} // namespace xpon::cfgdb
