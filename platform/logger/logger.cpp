#include "xpon/logger/logger.hpp"

#include "logger/printable.hpp"
#include "logger/zlog_level.hpp"

#include <cstring>

#include <zlog.h>

namespace xpon::logger {

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
    const char* file = where.file_name();
    const char* function = where.function_name();
    zlog(category_, file, std::strlen(file), function, std::strlen(function), static_cast<long>(where.line()),
         zlog_level_of(level), "%s", printable(text).c_str());
}

} // namespace xpon::logger
