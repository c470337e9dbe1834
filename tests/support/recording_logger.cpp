#include "tests/support/recording_logger.hpp"

#include <algorithm>

namespace xpon::test {

bool RecordingLogger::is_enabled(core::LogLevel level) const {
    return level >= least_level;
}

void RecordingLogger::write(core::LogLevel level, std::string_view text, const std::source_location&) {
    lines.push_back({level, std::string(text)});
}

std::vector<std::string> RecordingLogger::texts() const {
    std::vector<std::string> texts;
    std::ranges::transform(lines, std::back_inserter(texts), &Line::text);
    return texts;
}

bool RecordingLogger::contains(std::string_view text) const {
    return std::ranges::any_of(lines, [text](const Line& line) { return line.text == text; });
}

} // namespace xpon::test
