#include "xpon/logger/logger.hpp"

#include <cstddef>
#include <cstring>
#include <iterator>
#include <string>

#include <fmt/format.h>
#include <zlog.h>

namespace xpon::logger {
namespace {

/// zlog counts its levels in steps of 20 from 20.
constexpr int zlog_level_of(core::LogLevel level) {
    return ZLOG_LEVEL_DEBUG + static_cast<int>(level) * (ZLOG_LEVEL_INFO - ZLOG_LEVEL_DEBUG);
}
static_assert(zlog_level_of(core::LogLevel::Error) == ZLOG_LEVEL_ERROR);
static_assert(zlog_level_of(core::LogLevel::Fatal) == ZLOG_LEVEL_FATAL);

/// Bytes of the control character at the front of `text`; 0 when there is another character.
std::size_t control_character_size(std::string_view text) {
    const auto byte = [text](std::size_t at) { return static_cast<unsigned char>(text.at(at)); };
    if (byte(0) < 0x20 || byte(0) == 0x7f) {
        return 1;
    }
    return byte(0) == 0xc2 && text.size() > 1 && byte(1) >= 0x80 && byte(1) < 0xa0 ? 2 : 0;
}

/// `text` with every control character [ISO 6429, C0, DEL and the UTF-8 form of C1] as "\xNN" for each of its bytes,
/// so that what a client sent can neither begin a log line of its own nor steer the terminal of whoever reads it.
std::string printable(std::string_view text) {
    std::string line;
    line.reserve(text.size());
    while (!text.empty()) {
        const auto size = control_character_size(text);
        for (const char byte : text.substr(0, size)) {
            fmt::format_to(std::back_inserter(line), "\\x{:02X}", static_cast<unsigned char>(byte));
        }
        if (size == 0) {
            line += text.front();
        }
        text.remove_prefix(size == 0 ? 1 : size);
    }
    return line;
}

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
    const char* file = where.file_name();
    const char* function = where.function_name();
    zlog(category_, file, std::strlen(file), function, std::strlen(function), static_cast<long>(where.line()),
         zlog_level_of(level), "%s", printable(text).c_str());
}

} // namespace xpon::logger
