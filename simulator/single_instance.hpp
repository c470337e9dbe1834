#pragma once

#include "xpon/core/unique_fd.hpp"

#include <string>

namespace xpon::simulator {

/// Makes this process the one simulator of its OLT_ROOT while the object lives, with its process id in the pid file.
class SingleInstance {
public:
    /// Throws std::runtime_error, naming the other process, when there is one; std::system_error when the pid file
    /// cannot be made.
    SingleInstance();
    ~SingleInstance();
    SingleInstance(const SingleInstance&) = delete;
    SingleInstance& operator=(const SingleInstance&) = delete;

private:
    std::string path_;
    core::UniqueFd file_; ///< its lock is what counts; the kernel drops it with the process
};

} // namespace xpon::simulator
