#include "api_service/handlers/record_fields.hpp"

#include "xpon/core/printable_text.hpp"

#include <cstring>

namespace xpon::api_service {

std::string device_text(std::span<const char> buffer) {
    return core::printable_text({buffer.data(), strnlen(buffer.data(), buffer.size())});
}

Result<std::size_t> bounded_count(std::size_t count, std::size_t limit, const char* name) {
    if (count > limit) {
        return ErrorPayload(Error::InvalidInputArg, fmt::format("{}: {} of at most {}", name, count, limit));
    }
    return count;
}

Result<std::string> text_of_value(std::span<const char* const> texts, std::size_t value) {
    if (value >= texts.size()) {
        return ErrorPayload(Error::InvalidInputArg, fmt::format("{} of at most {}", value, texts.size() - 1));
    }
    return std::string(texts[value]);
}

} // namespace xpon::api_service
