#pragma once

#include "xpon/ipc/address.hpp"
#include "xpon/service/config_change.hpp"

#include <cstdint>
#include <vector>

namespace xpon::cfgdb {

/// What one commit did to the running configuration.
struct RunningCommit {
    std::uint64_t number = 0;
    ipc::Address by; ///< the endpoint whose commit it was; 0 = one without peers
    std::vector<service::Config_change> changes;
    /// Flat indices, ascending, of the ONTs that it reaches: their own records, or what they refer to, changed in
    /// more than a label.
    std::vector<std::uint16_t> onts;
};

/// The commits since another.
struct RunningCommits {
    std::uint64_t number = 0;             ///< of the last one
    bool is_complete = true;              ///< false: more has changed than is known, so that all must be read
    std::vector<RunningCommit> commits{}; ///< in order
};

// Every commit has a number, one more than that of the commit before; it is raised in the commit's own transaction. So
// whoever compares it with that of the last commit that he knows misses none, whatever becomes of notices. Where the
// whole configuration is put in place of another the number leaps. `db` comes from a CfgDbWrapper. Both throw
// std::system_error for a fault of the database.

/// The number of the last commit.
std::uint64_t running_number(const void* db);

/// What happened after the commit of this number. A record that is read afterwards is as new as the answer or newer.
RunningCommits running_commits_since(const void* db, std::uint64_t number);

} // namespace xpon::cfgdb
