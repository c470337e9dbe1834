#pragma once

#include "xpon/core/unique_fd.hpp"

#include <filesystem>
#include <optional>

#include <sys/types.h>

namespace xpon::oltctl {

/// The lock that the guard of a commit holds as long as it lives. The kernel tells who holds it, so that no process id
/// is written down that could be somebody else's tomorrow. It belongs to the process: a child does not inherit it.
class GuardLock {
public:
    /// Failure (usage) when the file cannot be made.
    explicit GuardLock(std::filesystem::path path);

    /// The process that holds it; empty when nobody does, or only this process.
    [[nodiscard]] std::optional<pid_t> holder() const;
    /// False when another process holds it.
    [[nodiscard]] bool take() const;
    /// Waits until nobody else holds it.
    void wait_and_take() const;
    /// Whether others find this lock: its file may have been removed, with all of XDG_RUNTIME_DIR.
    [[nodiscard]] bool is_in_place() const;

private:
    std::filesystem::path path_;
    core::UniqueFd file_;
};

} // namespace xpon::oltctl
