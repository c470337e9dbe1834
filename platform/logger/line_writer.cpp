#include "logger/line_writer.hpp"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <system_error>
#include <utility>

#include <sys/eventfd.h>

#include <fcntl.h>
#include <fmt/format.h>
#include <zlog.h>

namespace xpon::logger {
namespace {

/// zlog reports nothing to its caller. What remains of a failed line is errno: of open, and of write.
constexpr int causes_of_loss[] = {EMFILE, ENFILE, ENOSPC, EDQUOT,  EIO,    EROFS,
                                  EACCES, EPERM,  ENOENT, ENOTDIR, EISDIR, EFBIG};

} // namespace

LineWriter& LineWriter::instance() {
    static LineWriter writer;
    return writer;
}

void LineWriter::keep_descriptors() {
    const std::scoped_lock lock(mutex_);
    ::tzset(); // here, lest a machine without a time zone leaves its errno to the first line
    keeps_ = true;
    copied_ = core::UniqueFd(::eventfd(0, EFD_CLOEXEC));
    take_descriptors();
}

void LineWriter::give_back_descriptors() {
    const std::scoped_lock lock(mutex_);
    keeps_ = false;
    lend_descriptors();
    copied_ = core::UniqueFd();
}

void LineWriter::write(zlog_category_s* category, int level, const std::string& line,
                       const std::source_location& where) {
    const std::scoped_lock lock(mutex_);
    lend_and_write(category, level, line, where);
    if (std::ranges::find(causes_of_loss, errno) != std::end(causes_of_loss)) {
        cause_ = errno;
        ++lost_;
    } else if (lost_ > 0) {
        const auto told = fmt::format("{} log lines could not be written: {}", std::exchange(lost_, 0),
                                      std::generic_category().message(cause_));
        lend_and_write(category, ZLOG_LEVEL_WARN, told, where);
    }
}

void LineWriter::lend_and_write(zlog_category_s* category, int level, const std::string& line,
                                const std::source_location& where) {
    const char* file = where.file_name();
    const char* function = where.function_name();
    lend_descriptors();
    errno = 0;
    zlog(category, file, std::strlen(file), function, std::strlen(function), static_cast<long>(where.line()), level,
         "%s", line.c_str());
    const int outcome = errno;
    if (keeps_) {
        take_descriptors();
    }
    errno = outcome;
}

void LineWriter::lend_descriptors() {
    for (auto& descriptor : kept_) {
        const core::UniqueFd lent = std::exchange(descriptor, core::UniqueFd());
    }
}

void LineWriter::take_descriptors() {
    for (auto& descriptor : kept_) {
        descriptor = core::UniqueFd(::fcntl(copied_.get(), F_DUPFD_CLOEXEC, 0));
    }
}

} // namespace xpon::logger
