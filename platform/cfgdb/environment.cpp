#include "cfgdb/environment.hpp"

#include "cfgdb/file_descriptor.hpp"
#include "xpon/peer_side/database_log.hpp"

#include <cerrno>
#include <filesystem>
#include <map>
#include <stdexcept>
#include <system_error>
#include <tuple>
#include <utility>

#include <sys/stat.h>

#include <fcntl.h>
#include <fmt/format.h>

namespace xpon::cfgdb {
namespace {

/// Costs address space alone: the file has the pages that were ever in use at a time. What a stopped reader keeps from
/// reuse is the only thing that makes it large, and thousands of commits fit in beside that.
constexpr std::size_t map_size = std::size_t{sizeof(void*) > 4 ? 1024U : 128U} << 20U;
/// So often is looked for what dead readers keep, also while there is room.
constexpr unsigned writes_between_checks = 256;
constexpr mode_t folder_mode = 0700;
constexpr mdb_mode_t file_mode = 0600;

int errno_of(int status) {
    if (status == MDB_MAP_FULL || status == MDB_TXN_FULL) {
        return ENOSPC;
    }
    return status > 0 ? status : EIO; // LMDB's own are negative
}

void make_folder(const std::filesystem::path& folder) {
    if (folder.has_parent_path()) {
        std::filesystem::create_directories(folder.parent_path());
    }
    if (mkdir(folder.c_str(), folder_mode) != 0 && errno != EEXIST) {
        throw std::system_error(errno, std::generic_category(), "the folder cannot be made");
    }
}

bool is_no_database(int status) {
    return status == MDB_INVALID || status == MDB_CORRUPTED || status == MDB_VERSION_MISMATCH;
}

void remove_files(const std::filesystem::path& folder) {
    std::filesystem::remove(folder / "data.mdb");
    std::filesystem::remove(folder / "lock.mdb");
}

/// By folder. A process may open a file once only, also while a wait that was given up keeps it open.
std::weak_ptr<MDB_env>& opened_in(const std::string& folder) {
    static std::map<std::string, std::weak_ptr<MDB_env>> environments;
    return environments[folder];
}

void throw_when_late(bool in_time, const char* step) {
    if (!in_time) {
        throw std::system_error(ETIMEDOUT, std::generic_category(),
                                fmt::format("{}: another process keeps the lock", step));
    }
}

int try_to_open(const std::string& folder, std::shared_ptr<MDB_env>& environment) {
    MDB_env* created = nullptr;
    check_lmdb(mdb_env_create(&created), "mdb_env_create");
    environment.reset(created, mdb_env_close);
    check_lmdb(mdb_env_set_mapsize(created, map_size), "mdb_env_set_mapsize");
    return mdb_env_open(created, folder.c_str(), MDB_NOSYNC | MDB_NOTLS, file_mode);
}

std::shared_ptr<MDB_env> open_files(const std::string& folder) {
    make_folder(folder);
    // Nobody opens the files while somebody else finds that they must go.
    const FileDescriptor folder_descriptor(folder, O_RDONLY | O_DIRECTORY);
    folder_descriptor.lock();
    std::shared_ptr<MDB_env> environment;
    int status = try_to_open(folder, environment);
    if (is_no_database(status)) {
        // A file system that was full when the database was made leaves such a file. It holds nothing, and a start
        // finds its configuration elsewhere.
        core::log(database_log(), core::LogLevel::Warning, "Configuration database {} is damaged and made anew: {}",
                  folder, mdb_strerror(status));
        remove_files(folder);
        status = try_to_open(folder, environment);
    }
    check_lmdb(status, "mdb_env_open");
    return environment;
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

void Environment::open(const std::string& folder) {
    environment_ = opened_in(folder).lock();
    if (!environment_) {
        const auto opened = std::make_shared<Handle>();
        throw_when_late(attendant_.run([=] { *opened = open_files(folder); }, [] {}, patience_), "mdb_env_open");
        environment_ = *opened;
        opened_in(folder) = environment_;
    }
    clear_dead_readers();
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
    int status = begin(MDB_RDONLY, reader);
    if (status == MDB_READERS_FULL && clear_dead_readers()) {
        status = begin(MDB_RDONLY, reader);
    }
    check_lmdb(status, "mdb_txn_begin");
    return reader;
}

void Environment::release_reader(MDB_txn* reader) const {
    if (idle_reader_ != nullptr) {
        return mdb_txn_abort(reader);
    }
    mdb_txn_reset(reader);
    idle_reader_ = reader;
}

int Environment::begin(unsigned flags, MDB_txn*& transaction) const {
    struct Begun {
        Handle environment; // outlives a wait that is given up
        MDB_txn* transaction = nullptr;
        int status = 0;
    };
    const auto begun = std::make_shared<Begun>(Begun{environment_});
    const bool in_time = attendant_.run(
        [=] { begun->status = mdb_txn_begin(begun->environment.get(), nullptr, flags, &begun->transaction); },
        [=] {
            if (begun->transaction != nullptr) {
                mdb_txn_abort(begun->transaction);
            }
        },
        patience_);
    throw_when_late(in_time, "mdb_txn_begin");
    transaction = begun->transaction;
    return begun->status;
}

MDB_txn* Environment::begin_writing() const {
    if (++writes_ % writes_between_checks == 0) {
        clear_dead_readers();
    }
    MDB_txn* writer = nullptr;
    check_lmdb(begin(0, writer), "mdb_txn_begin");
    return writer;
}

void Environment::commit(MDB_txn* writer) const {
    int status = 0;
    std::ignore = attendant_.run([&] { status = mdb_txn_commit(writer); }, [] {}, std::nullopt);
    check_lmdb(status, "mdb_txn_commit");
}

void Environment::abort(MDB_txn* writer) const {
    std::ignore = attendant_.run([=] { mdb_txn_abort(writer); }, [] {}, std::nullopt);
}

bool Environment::clear_dead_readers() const {
    const auto environment = environment_;
    const auto cleared = std::make_shared<int>(0);
    const auto status = std::make_shared<int>(0);
    const bool in_time =
        attendant_.run([=] { *status = mdb_reader_check(environment.get(), cleared.get()); }, [] {}, patience_);
    throw_when_late(in_time, "mdb_reader_check");
    check_lmdb(*status, "mdb_reader_check");
    return *cleared > 0;
}

} // namespace xpon::cfgdb
