#pragma once

#include "xpon/cfgdb/user_record.hpp"
#include "xpon/core/result.hpp"
#include "xpon/ipc/ipc.hpp"

#include <memory>
#include <string>

namespace xpon::cfgdb {

class Database;

/// A client of the configuration database. Costs bytes only: all clients of a process share one open database, and
/// no transaction outlives a call.
class CfgDbWrapper {
public:
    /// Opens the database when this is the process's first client. Throws std::runtime_error, naming the path and
    /// the cause, when it cannot be opened.
    explicit CfgDbWrapper(const std::string& client_name);
    ~CfgDbWrapper();
    CfgDbWrapper(const CfgDbWrapper&) = delete;
    CfgDbWrapper& operator=(const CfgDbWrapper&) = delete;

    /// Error Empty, "User not found", for an unknown name. Names are compared exactly.
    [[nodiscard]] core::Result<User_record> find_user_by_username(const std::string& name) const;

    /// Moves the candidate's changes into the running configuration, all or none. Asks every connected peer of `ipc`
    /// (which may be empty) whether it accepts them before, and tells it afterwards. A peer that is down or silent
    /// does not hold a commit up.
    /// Errors: Empty when nothing is pending; InvalidState when a check or a peer refuses the configuration, with the
    /// message "PATH: TEXT"; CommonError for a fault of the database. After an error both stores are as they were.
    core::Result<void> commit(const std::shared_ptr<ipc::IIpc>& ipc);

    /// Drops the candidate's changes.
    core::Result<void> rollback();

    /// The database argument of the `getDb_`, `getRunDb_` and `setDb_` functions.
    [[nodiscard]] const void* handle() const;
    /// The context argument of the same functions: this client's number, used in logs only.
    [[nodiscard]] int context() const;

private:
    std::shared_ptr<Database> database_;
    std::string client_name_;
    int context_;
};

} // namespace xpon::cfgdb
