#pragma once

#include "xpon/core/logger.hpp"
#include "xpon/core/result.hpp"
#include "xpon/core/unique_fd.hpp"

#include <memory>
#include <source_location>
#include <string>
#include <string_view>

struct zlog_category_s;

namespace xpon::logger {

/// The process's connection to the logging back end; closing it ends all logging. One at a time per process.
class LoggerContext {
public:
    /// `configuration` is the file that the back end reads and locks.
    explicit LoggerContext(core::UniqueFd configuration);
    LoggerContext(const LoggerContext&) = delete;
    LoggerContext& operator=(const LoggerContext&) = delete;
    ~LoggerContext();

private:
    core::UniqueFd configuration_;
};

/// Writes the lines of one zlog category. Needs a LoggerContext that outlives it.
class Logger : public core::ILogger {
public:
    /// A category without a rule in the configuration file logs nothing.
    explicit Logger(const std::string& category);

    /// Reads the zlog configuration at `config_path` (taken below OLT_ROOT). `category` must have a rule in it.
    /// `flags` is reserved and 0. Errors: CommonError with the file and the cause, Already for a second context.
    static core::Result<std::unique_ptr<LoggerContext>> create_context(const std::string& config_path,
                                                                       const std::string& category, int flags);

    [[nodiscard]] bool is_enabled(core::LogLevel level) const override;
    /// Writes the text as one printable line of bounded length. A line that cannot be written is counted, and the
    /// number is told behind the next one that can.
    void write(core::LogLevel level, std::string_view text, const std::source_location& where) override;

protected:
    explicit Logger(zlog_category_s* category);

private:
    zlog_category_s* category_; // owned by zlog
};

} // namespace xpon::logger
