#pragma once

#include "xpon/core/unique_fd.hpp"

#include <array>
#include <cstddef>
#include <mutex>
#include <source_location>
#include <string>

struct zlog_category_s;

namespace xpon::logger {

/// Writes the lines of the process through zlog and notices those that could not be written.
///
/// zlog opens the log file anew for every line. A process that has no descriptor left would therefore log nothing, just
/// when there is something to tell: some are kept back and lent to zlog for each line.
class LineWriter {
public:
    /// The one of this process, as zlog's state is one per process.
    static LineWriter& instance();

    void keep_descriptors();
    void give_back_descriptors();

    /// A line that could not be written is counted. The next one that can is followed by a line that tells the count
    /// and the cause.
    void write(zlog_category_s* category, int level, const std::string& line, const std::source_location& where);

private:
    void lend_and_write(zlog_category_s* category, int level, const std::string& line,
                        const std::source_location& where);
    void lend_descriptors();
    void take_descriptors();

    std::mutex mutex_;
    core::UniqueFd copied_;              ///< a copy takes a fifth of the time of a new one
    std::array<core::UniqueFd, 2> kept_; ///< the rotation opens its lock and the folder
    bool keeps_ = false;
    std::size_t lost_ = 0;
    int cause_ = 0; ///< errno value of the latest loss
};

} // namespace xpon::logger
