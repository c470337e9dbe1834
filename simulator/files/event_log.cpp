#include "simulator/files/event_log.hpp"

#include <algorithm>
#include <array>
#include <chrono>
#include <fstream>
#include <string>
#include <system_error>
#include <utility>

#include <fmt/chrono.h>

namespace xpon::simulator {

EventLog::EventLog(std::filesystem::path file) : file_(std::move(file)) {}

void EventLog::write(std::string_view text) const {
    write(std::array{std::string(text)});
}

void EventLog::write(std::span<const std::string> texts) const {
    static constexpr std::uintmax_t largest = 1024 * 1024;
    namespace fs = std::filesystem;
    std::error_code ignored;
    if (const auto size = fs::file_size(file_, ignored); !ignored && size > largest) {
        fs::rename(file_, fs::path(file_).concat(".1"), ignored);
    }
    const auto now = std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now());
    const auto time = fmt::format("{:%FT%TZ}", fmt::gmtime(now));
    std::ofstream file(file_, std::ios::app);
    for (auto text : texts) {
        std::ranges::replace_if(text, [](unsigned char letter) { return letter < ' ' || letter == 0x7f; }, '?');
        // One write per line, so that no reader sees half of one.
        file << fmt::format("{} {}\n", time, text) << std::flush;
    }
}

} // namespace xpon::simulator
