#pragma once

#include "client/oltctl/confirmation/unconfirmed_commit.hpp"

#include <chrono>
#include <cstdint>
#include <string>

namespace xpon::oltctl {

/// Starts the guard of a commit: a process without a terminal that takes the commit back at its deadline. Returns when
/// the guard is at work, before the commit is made, so that there is no moment without it.
///
/// It survives the end of the terminal and of the login (it holds all it needs in memory and writes its file again when
/// that is gone), is started anew when it is killed, by a second process or by the next call of the program, and goes
/// on trying while the daemon is away. A daemon that was restarted has forgotten all sessions: the guard then waits for
/// the next login of the user. When it is told to end (SIGTERM), it takes the commit back at once.
void start_guard(const UnconfirmedCommit& commit, std::chrono::milliseconds patience);

/// Ends the guard and leaves the commit in force. Failure (refused) when none waits, with the outcome when it has been
/// taken back already.
void confirm(std::uint16_t port);
/// Takes the unconfirmed commit back now. Failure (refused) when there is none, or with what stands against it.
void restore_now(std::uint16_t port, std::chrono::milliseconds patience);

/// What the user has to know of a commit of before: what has become of it, or why it could not be taken back. Starts a
/// new guard when the old one is gone. "" when there is nothing to tell; the same outcome is told once.
std::string news_of_commit(std::uint16_t port, std::chrono::milliseconds patience);
/// To be called after a login: a guard that waits for a session tries again at once.
void hurry_guard(std::uint16_t port);
/// Whether a commit waits to be confirmed.
bool is_commit_unconfirmed(std::uint16_t port);

} // namespace xpon::oltctl
