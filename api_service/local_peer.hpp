#pragma once

#include <optional>

#include <sys/types.h>

namespace xpon::api_service {

/// Who is at the other end of a connection within this machine.
struct LocalPeer {
    uid_t uid = 0;   ///< of the socket's maker
    ino_t inode = 0; ///< of the socket
};

/// Empty when the kernel does not tell: for a peer on another machine, one that has closed its end, or no permission.
std::optional<LocalPeer> find_local_peer(int connection);

/// The first process that holds the peer's socket. Empty when there is none or this process may not look. Looks at the
/// descriptors of every process, which takes milliseconds.
std::optional<pid_t> find_process_of(const LocalPeer& peer);

} // namespace xpon::api_service
