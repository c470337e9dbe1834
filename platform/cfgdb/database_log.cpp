#include "xpon/peer_side/database_log.hpp"

namespace xpon::cfgdb {
namespace {

class SilentLogger : public core::ILogger {
public:
    [[nodiscard]] bool is_enabled(core::LogLevel) const override {
        return false;
    }
    void write(core::LogLevel, std::string_view, const std::source_location&) override {}
};

std::shared_ptr<core::ILogger>& logger_in_use() {
    static std::shared_ptr<core::ILogger> logger = std::make_shared<SilentLogger>();
    return logger;
}

} // namespace

void set_database_log(std::shared_ptr<core::ILogger> logger) {
    logger_in_use() = logger ? std::move(logger) : std::make_shared<SilentLogger>();
}

core::ILogger& database_log() {
    return *logger_in_use();
}

} // namespace xpon::cfgdb
