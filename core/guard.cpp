#include "xpon/core/guard.hpp"

#include <string>

namespace xpon::core {
namespace {

std::string copy_or_nothing(const char* text) noexcept {
    try {
        return text;
    } catch (...) {
        return {};
    }
}

void write_exception(ILogger& logger, std::string_view text, const char* what,
                     const std::source_location& where) noexcept {
    try {
        if (logger.is_enabled(LogLevel::Error)) {
            logger.write(LogLevel::Error, fmt::format(fmt::runtime(text), what), where);
        }
    } catch (...) { // NOLINT(bugprone-empty-catch): a line that cannot be written must not hide the error
    }
}

} // namespace

ErrorPayload describe_current_exception(ILogger& logger, std::string_view text,
                                        const std::source_location& where) noexcept {
    try {
        throw;
    } catch (const std::exception& exception) {
        write_exception(logger, text, exception.what(), where);
        return {Error::Exception, copy_or_nothing(exception.what()), where};
    } catch (...) {
        write_exception(logger, "An exception was thrown. ", "", where);
        return {Error::Exception, where};
    }
}

} // namespace xpon::core
