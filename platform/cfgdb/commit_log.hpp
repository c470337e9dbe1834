#pragma once

#include "cfgdb/transaction.hpp"
#include "xpon/peer_side/running_commits.hpp"

#include <cstdint>

namespace xpon::cfgdb {

/// The number of the last commit; 0 in a database that has seen none.
std::uint64_t commit_number(const Transaction& transaction);

/// Gives the commit the next number, which it returns, and keeps what it did, for as long as a few dozens of others.
std::uint64_t log_commit(WriteTransaction& transaction, RunningCommit commit);

/// Raises the number for a change of running that is not described: whoever follows reads all. Numbers of a new
/// database are beyond those of any before it.
void log_replacement(WriteTransaction& transaction);

/// What is known of the commits after this one.
RunningCommits commits_since(const Transaction& transaction, std::uint64_t number);

} // namespace xpon::cfgdb
