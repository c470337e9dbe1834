#include "logger/line_writer.hpp"
#include "xpon/logger/logger.hpp"
#include "xpon/peer_side/olt_root.hpp"

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <ranges>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

#include <sys/mman.h>

#include <fmt/format.h>
#include <unistd.h>
#include <zlog.h>

namespace xpon::logger {
namespace {

// zlog's state is one per process, too.
bool context_exists = false;

core::ErrorPayload fault_of(const std::string& file, std::string_view cause) {
    return {core::Error::CommonError, fmt::format("{}: {}", file, cause)};
}

core::Result<std::string> read_file(const std::string& path) {
    errno = 0;
    std::ifstream file(path);
    std::string text;
    std::getline(file, text, '\0');
    if (!file.is_open() || file.bad()) {
        return fault_of(path, std::generic_category().message(errno));
    }
    return text;
}

/// zlog knows %E(NAME) in paths of log files, but not in the path of the rotation lock, and refuses the whole file
/// when the variable is unset, as OLT_ROOT is on the device. With the folder put in here its paths are constants,
/// too, which lets zlog keep the log file open and tell at start-up when it cannot be written.
std::string with_olt_root(std::string text) {
    static constexpr std::string_view variable = "%E(OLT_ROOT)";
    const auto root = below_olt_root("");
    for (auto at = text.find(variable); at != std::string::npos; at = text.find(variable, at + root.size())) {
        text.replace(at, variable.size(), root);
    }
    return text;
}

/// `text` as a file of this process's memory: zlog leaks 120 KB for every configuration that it is given as a string.
core::Result<core::UniqueFd> memory_file(const std::string& text) {
    core::UniqueFd file(::memfd_create("zlog configuration", MFD_CLOEXEC));
    if (!file || ::write(file.get(), text.data(), text.size()) != static_cast<ssize_t>(text.size())) {
        return core::ErrorPayload(core::Error::CommonError, fmt::format("No memory for zlog's configuration: {}",
                                                                        std::generic_category().message(errno)));
    }
    return file;
}

/// zlog hands out a category whether or not a rule is about it: without one it has no level that is written.
bool has_rule(const std::string& category) {
    zlog_category_t* handle = zlog_get_category(category.c_str());
    return std::ranges::any_of(std::views::iota(1, 255),
                               [handle](int level) { return zlog_level_enabled(handle, level) != 0; });
}

} // namespace

LoggerContext::LoggerContext(core::UniqueFd configuration) : configuration_(std::move(configuration)) {}

LoggerContext::~LoggerContext() {
    LineWriter::instance().give_back_descriptors();
    zlog_fini();
    context_exists = false;
}

core::Result<std::unique_ptr<LoggerContext>> Logger::create_context(const std::string& config_path,
                                                                    const std::string& category, int flags) {
    if (flags != 0) {
        return core::ErrorPayload(core::Error::InvalidInputArg, fmt::format("Unknown logging flags {:#x}", flags));
    }
    if (context_exists) {
        return core::ErrorPayload(core::Error::Already, "This process has a logging context");
    }
    const auto path = below_olt_root(config_path);
    BOOST_OUTCOME_TRY(auto text, read_file(path));
    BOOST_OUTCOME_TRY(auto file, memory_file(with_olt_root(std::move(text))));
    if (zlog_init(fmt::format("/proc/self/fd/{}", file.get()).c_str()) != 0) {
        return fault_of(path, "zlog refuses it: it is malformed or names a log file that cannot be written "
                              "(zlog writes the reason to the file named by ZLOG_PROFILE_ERROR)");
    }
    context_exists = true;
    LineWriter::instance().keep_descriptors();
    auto context = std::make_unique<LoggerContext>(std::move(file));
    if (!has_rule(category)) {
        return fault_of(path, fmt::format("no rule for category {}", category));
    }
    return context;
}

} // namespace xpon::logger
