#pragma once

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
class Environment {
public:
    /// Opens or creates the database in `folder`, which is made when it is missing, for the owner alone. Throws
    /// std::runtime_error with the path and the cause.
    explicit Environment(const std::string& folder);
    ~Environment();
    Environment(const Environment&) = delete;
    Environment& operator=(const Environment&) = delete;

    [[nodiscard]] MDB_env* handle() const {
        return environment_.get();
    }
    [[nodiscard]] MDB_dbi database() const {
        return database_;
    }

    /// Room for several times the largest configuration, candidate and indexes included. Unused room costs nothing.
    static constexpr std::size_t map_size = std::size_t{128} << 20U;
    static constexpr unsigned open_flags = MDB_NOSYNC | MDB_NOTLS;
    static constexpr mdb_mode_t file_mode = 0600;

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

private:
    struct Closer {
        void operator()(MDB_env* environment) const {
            mdb_env_close(environment);
        }
    };

    void open(const std::string& folder);
    void open_files(const std::string& folder);

    std::unique_ptr<MDB_env, Closer> environment_;
    MDB_dbi database_ = 0;
    std::string damage_;
    mutable MDB_txn* idle_reader_ = nullptr;
};

} // namespace xpon::cfgdb
