#include "api_service/handlers/record_fields.hpp"

#include <algorithm>

namespace xpon::api_service {

Result<std::string> bounded_text(std::span<const char> buffer) {
    const auto end = std::find(buffer.begin(), buffer.end(), '\0');
    if (end == buffer.end()) {
        return ErrorPayload(Error::InvalidInputArg, fmt::format("no end within {} bytes", buffer.size()));
    }
    return std::string(buffer.begin(), end);
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
