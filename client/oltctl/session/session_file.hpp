#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace xpon::oltctl {

/// What one call of the program hands on to the next. The password is not in it.
struct KeptSession {
    std::string id;
    std::string user;
    std::string privilege; ///< "viewer", "operator" or "administrator"
    std::uint16_t port = 0;
};

/// XDG_RUNTIME_DIR: the folder of the user alone, emptied when the machine starts. Without one, oltctl-UID in the
/// folder for temporary files; Failure (no_session) when that is not the user's alone.
std::filesystem::path runtime_folder();

/// The session that was kept for the service on `port`. A file that others may read or that belongs to somebody else is
/// refused with a Failure.
std::optional<KeptSession> read_kept_session(std::uint16_t port);
/// Keeps it in a file of mode 0600 in runtime_folder(), whole or not at all.
void keep_session(const KeptSession& session);
void forget_session(std::uint16_t port);

} // namespace xpon::oltctl
