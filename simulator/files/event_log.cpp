#include "simulator/files/event_log.hpp"

#include <chrono>
#include <fstream>
#include <system_error>
#include <utility>

#include <fmt/chrono.h>

namespace xpon::simulator {

EventLog::EventLog(std::filesystem::path file) : file_(std::move(file)) {}

void EventLog::write(std::string_view text) const {
    static constexpr std::uintmax_t largest = 1024 * 1024;
    namespace fs = std::filesystem;
    std::error_code ignored;
    if (const auto size = fs::file_size(file_, ignored); !ignored && size > largest) {
        fs::rename(file_, fs::path(file_).concat(".1"), ignored);
    }
    const auto now = std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now());
    // One write per line, so that no reader sees half of one.
    std::ofstream(file_, std::ios::app) << fmt::format("{:%FT%TZ} {}\n", fmt::gmtime(now), text);
}

} // namespace xpon::simulator
