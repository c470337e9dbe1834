#include "cfgdb/environment.hpp"

#include "cfgdb/file_descriptor.hpp"
#include "cfgdb/soundness.hpp"

#include <cerrno>
#include <chrono>
#include <filesystem>
#include <map>
#include <stdexcept>
#include <system_error>
#include <utility>

#include <sys/stat.h>

#include <fcntl.h>
#include <fmt/format.h>

namespace xpon::cfgdb {
namespace {

/// So often is looked for what dead readers keep, also while there is room.
constexpr unsigned writes_between_checks = 256;
/// Looking costs as much as reading a few records.
constexpr std::chrono::milliseconds between_looks_at_files{20};
constexpr mode_t database_folder_mode = 0700;
/// Others look through the database and read saved files meanwhile.
constexpr std::chrono::seconds longest_wait_for_opening{4};
/// Room for LMDB's table of readers.
constexpr off_t lock_file_size = off_t{16} << 10U;

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
    if (mkdir(folder.c_str(), database_folder_mode) != 0 && errno != EEXIST) {
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

std::shared_ptr<MDB_env> open_files(const std::string& folder, std::string& damage) {
    make_folder(folder);
    // Nobody opens the files while somebody else finds that they must go.
    const FolderLock lock(folder, longest_wait_for_opening);
    reserve_lock_file(folder);
    if (const auto found = find_damage(folder)) {
        damage = *found;
        remove_files(folder);
        reserve_lock_file(folder);
    }
    MDB_env* created = nullptr;
    check_lmdb(mdb_env_create(&created), "mdb_env_create");
    std::shared_ptr<MDB_env> environment(created, mdb_env_close);
    check_lmdb(mdb_env_set_mapsize(created, Environment::map_size), "mdb_env_set_mapsize");
    check_lmdb(mdb_env_open(created, folder.c_str(), Environment::open_flags, Environment::file_mode), "mdb_env_open");
    return environment;
}

} // namespace

void check_lmdb(int status, const char* step) {
    if (status != MDB_SUCCESS) {
        throw std::system_error(errno_of(status), std::generic_category(),
                                fmt::format("{}: {}", step, mdb_strerror(status)));
    }
}

Environment::Environment(const std::string& folder) : folder_(folder) {
    try {
        open();
    } catch (const std::exception& error) {
        throw std::runtime_error(fmt::format("Configuration database {} cannot be opened: {}", folder, error.what()));
    }
}

Environment::~Environment() {
    if (idle_reader_ != nullptr) {
        mdb_txn_abort(idle_reader_);
    }
}

void Environment::open() const {
    environment_ = opened_in(folder_).lock();
    if (!environment_) {
        open_files_anew();
    }
    open_database();
}

void Environment::open_database() const {
    clear_dead_readers();
    auto* const reader = begin_reading();
    const int status = mdb_dbi_open(reader, nullptr, 0, &database_);
    // The handle stays valid only when the transaction that opened it commits.
    check_lmdb(status == MDB_SUCCESS ? mdb_txn_commit(reader) : (mdb_txn_abort(reader), status), "mdb_dbi_open");
}

void Environment::open_files_anew() const {
    struct Opened {
        Handle handle;
        std::string damage;
    };
    const auto opened = std::make_shared<Opened>();
    const auto step = [opened, folder = folder_] { opened->handle = open_files(folder, opened->damage); };
    throw_when_late(attendant_.run(step, [] {}, [] {}, patience_), "mdb_env_open");
    environment_ = opened->handle;
    damage_ = opened->damage;
    opened_in(folder_) = environment_;
}

bool Environment::is_replaced() const {
    int fd = -1;
    check_lmdb(mdb_env_get_fd(environment_.get(), &fd), "mdb_env_get_fd");
    struct stat opened{};
    struct stat present{};
    // Without a file somebody is about to make one.
    return fstat(fd, &opened) == 0 && stat((folder_ + "/data.mdb").c_str(), &present) == 0 &&
           (opened.st_ino != present.st_ino || opened.st_dev != present.st_dev);
}

void Environment::follow_new_files() const {
    const auto now = Clock::now();
    if (transactions_ > 0 || now < next_look_at_files_) {
        return;
    }
    next_look_at_files_ = now + between_looks_at_files;
    if (is_replaced()) {
        if (auto* const reader = std::exchange(idle_reader_, nullptr)) {
            mdb_txn_abort(reader);
        }
        open_files_anew();
        open_database();
    }
}

MDB_txn* Environment::acquire_reader() const {
    follow_new_files();
    auto* const reader = begin_reading();
    ++transactions_;
    return reader;
}

MDB_txn* Environment::begin_reading() const {
    if (auto* const reader = std::exchange(idle_reader_, nullptr)) {
        if (mdb_txn_renew(reader) == MDB_SUCCESS) {
            return reader;
        }
        mdb_txn_abort(reader);
    }
    MDB_txn* reader = nullptr;
    int status = begin_reader(reader);
    if (status == MDB_READERS_FULL && clear_dead_readers()) {
        status = begin_reader(reader);
    }
    check_lmdb(status, "mdb_txn_begin");
    return reader;
}

void Environment::release_reader(MDB_txn* reader) const {
    --transactions_;
    if (idle_reader_ != nullptr) {
        return mdb_txn_abort(reader);
    }
    mdb_txn_reset(reader);
    idle_reader_ = reader;
}

int Environment::begin_reader(MDB_txn*& reader) const {
    int status = 0;
    begin(MDB_RDONLY, [&](int begun, MDB_txn* transaction) {
        status = begun;
        reader = transaction;
    });
    return status;
}

/// `use` is given the transaction, or a status of LMDB that says why there is none.
void Environment::begin(unsigned flags, const std::function<void(int status, MDB_txn*)>& use) const {
    struct Begun {
        Handle environment; // outlives a wait that is given up
        MDB_txn* transaction = nullptr;
        int status = 0;
    };
    const auto begun = std::make_shared<Begun>(Begun{environment_});
    const bool in_time = attendant_.run(
        [=] { begun->status = mdb_txn_begin(begun->environment.get(), nullptr, flags, &begun->transaction); },
        [&] { use(begun->status, begun->transaction); },
        [=] {
            if (begun->transaction != nullptr) {
                mdb_txn_abort(begun->transaction);
            }
        },
        patience_);
    throw_when_late(in_time, "mdb_txn_begin");
}

void Environment::write(const std::function<void(MDB_txn*)>& work) const {
    if (++writes_ % writes_between_checks == 0) {
        clear_dead_readers();
    }
    follow_new_files();
    begin(0, [&](int status, MDB_txn* writer) {
        check_lmdb(status, "mdb_txn_begin");
        ++transactions_;
        work(writer);
    });
}

void Environment::commit(MDB_txn* writer) const {
    --transactions_;
    check_lmdb(mdb_txn_commit(writer), "mdb_txn_commit");
}

void Environment::abort(MDB_txn* writer) const {
    --transactions_;
    mdb_txn_abort(writer);
}

bool Environment::clear_dead_readers() const {
    const auto environment = environment_;
    const auto cleared = std::make_shared<int>(0);
    const auto status = std::make_shared<int>(0);
    const bool in_time =
        attendant_.run([=] { *status = mdb_reader_check(environment.get(), cleared.get()); }, [] {}, [] {}, patience_);
    throw_when_late(in_time, "mdb_reader_check");
    check_lmdb(*status, "mdb_reader_check");
    return *cleared > 0;
}

} // namespace xpon::cfgdb
