#include "tests/support/recording_logger.hpp"

#include <algorithm>

namespace xpon::test {

bool RecordingLogger::is_enabled(core::LogLevel level) const {
    return level >= least_level;
}

void RecordingLogger::write(core::LogLevel level, std::string_view text, const std::source_location&) {
    const std::scoped_lock lock(mutex_);
    lines.push_back({level, std::string(text)});
}

std::vector<std::string> RecordingLogger::texts() const {
    const std::scoped_lock lock(mutex_);
    std::vector<std::string> texts;
    std::ranges::transform(lines, std::back_inserter(texts), &Line::text);
    return texts;
}

bool RecordingLogger::contains(std::string_view text) const {
    const std::scoped_lock lock(mutex_);
    return std::ranges::any_of(lines, [text](const Line& line) { return line.text == text; });
}

void RecordingLogger::clear() {
    const std::scoped_lock lock(mutex_);
    lines.clear();
}

} // namespace xpon::test
