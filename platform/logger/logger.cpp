#include "xpon/logger/logger.hpp"

#include "logger/line_writer.hpp"
#include "xpon/core/printable_text.hpp"

#include <cstddef>

#include <zlog.h>

namespace xpon::logger {
namespace {

/// zlog counts its levels in steps of 20 from 20.
constexpr int zlog_level_of(core::LogLevel level) {
    return ZLOG_LEVEL_DEBUG + static_cast<int>(level) * (ZLOG_LEVEL_INFO - ZLOG_LEVEL_DEBUG);
}
static_assert(zlog_level_of(core::LogLevel::Error) == ZLOG_LEVEL_ERROR);
static_assert(zlog_level_of(core::LogLevel::Fatal) == ZLOG_LEVEL_FATAL);

/// Bytes of a line's text. A line that says more than this is of somebody who wants the log to forget the others.
constexpr std::size_t longest_text = 2048;

} // namespace

// zlog has no category to give while there is no context; such a logger is silent.
Logger::Logger(const std::string& category) : category_(zlog_get_category(category.c_str())) {}

Logger::Logger(zlog_category_s* category) : category_(category) {}

bool Logger::is_enabled(core::LogLevel level) const {
    return zlog_level_enabled(category_, zlog_level_of(level)) != 0;
}

void Logger::write(core::LogLevel level, std::string_view text, const std::source_location& where) {
    if (!is_enabled(level)) {
        return;
    }
    // What a client or a peer sent can neither begin a line of its own nor steer the terminal of whoever reads it.
    LineWriter::instance().write(category_, zlog_level_of(level), core::printable_text(text, longest_text), where);
}

} // namespace xpon::logger
