#pragma once

#include "cfgdb/attendant.hpp"

#include <chrono>
#include <functional>
#include <memory>
#include <string>

#include <lmdb.h>

namespace xpon::cfgdb {

/// Throws std::system_error for a status of LMDB other than success; `step` says what failed. Full databases become
/// ENOSPC, faults that have no errno value EIO.
void check_lmdb(int status, const char* step);

/// An open LMDB environment with its one, unnamed database. A process may open a file once only. The folder is
/// volatile, so nothing is synced: what a killed process left is consistent all the same, because the pages survive in
/// the system's cache and the last page written is the one that makes a transaction count.
///
/// Other processes cannot hold this one up: a process that is stopped while it has a lock of the database costs those
/// who want it ETIMEDOUT, and pages that only a dead reader keeps from reuse are freed. Who finds the files damaged
/// makes them anew, and those who have the old ones open follow.
class Environment {
public:
    /// Opens or creates the database in `folder`, which is made when it is missing, for the owner alone. Throws
    /// std::runtime_error with the path and the cause.
    explicit Environment(const std::string& folder);
    ~Environment();
    Environment(const Environment&) = delete;
    Environment& operator=(const Environment&) = delete;

    [[nodiscard]] MDB_dbi database() const {
        return database_;
    }

    /// Costs address space alone: the file has the pages that were ever in use at a time. What a stopped reader keeps
    /// from reuse is the only thing that makes it large, and thousands of commits fit in beside that.
    static constexpr std::size_t map_size = std::size_t{sizeof(void*) > 4 ? 1024U : 128U} << 20U;
    static constexpr unsigned open_flags = MDB_NOSYNC | MDB_NOTLS;
    static constexpr mdb_mode_t file_mode = 0600;

    /// From now on somebody waits for every call. Whoever opens a database waits longer than that: another process may
    /// be filling it.
    void serve_clients() {
        patience_ = patience_with_others;
    }

    /// Why the database was made anew at this opening; "" when it was not.
    [[nodiscard]] const std::string& damage() const {
        return damage_;
    }

    /// A reading transaction that sees the present state. It is kept between uses: renewing one is far cheaper than
    /// making one, and the process takes one reader slot whatever the number of its clients.
    /// @{
    [[nodiscard]] MDB_txn* acquire_reader() const;
    void release_reader(MDB_txn* reader) const;
    /// @}

    /// Hands `work` the one writing transaction that there is at a time. All of their kind are begun and ended by one
    /// thread, which LMDB's lock belongs to: it does the work, too, which must end the transaction.
    void write(const std::function<void(MDB_txn*)>& work) const;
    /// Its end.
    /// @{
    void commit(MDB_txn* writer) const;
    void abort(MDB_txn* writer) const;
    /// @}

    /// A process that was killed while it read leaves its reader slot, and the slot keeps old pages from reuse.
    /// Returns whether there were such slots.
    bool clear_dead_readers() const;

private:
    using Handle = std::shared_ptr<MDB_env>;

    using Clock = std::chrono::steady_clock;

    void open() const;
    void open_files_anew() const;
    void open_database() const;
    void follow_new_files() const;
    [[nodiscard]] bool is_replaced() const;
    [[nodiscard]] MDB_txn* begin_reading() const;
    void begin(unsigned flags, const std::function<void(int status, MDB_txn*)>& use) const;
    [[nodiscard]] int begin_reader(MDB_txn*& reader) const;

    std::string folder_;
    mutable Handle environment_;
    mutable MDB_dbi database_ = 0;
    std::chrono::milliseconds patience_{5000};
    mutable std::string damage_;
    mutable MDB_txn* idle_reader_ = nullptr;
    mutable unsigned transactions_ = 0; ///< in use
    mutable Clock::time_point next_look_at_files_;
    mutable unsigned writes_ = 0;
    mutable Attendant attendant_;
};

} // namespace xpon::cfgdb
