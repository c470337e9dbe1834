#include "cfgdb/saved_file.hpp"

#include "cfgdb/checksum.hpp"
#include "cfgdb/durable_file.hpp"
#include "xpon/peer_side/olt_root.hpp"

#include <cerrno>
#include <filesystem>
#include <map>
#include <system_error>

#include <fmt/format.h>

namespace xpon::cfgdb {
namespace {

namespace fs = std::filesystem;

constexpr const char* saved_path = "/configuration/save-config";

std::string originals_of(const fs::path& path) {
    return path.filename().string() + ".original-";
}

/// Flash is small: of many originals the latest stay.
void remove_oldest_originals(const fs::path& path) {
    constexpr std::size_t most_originals = 8;
    std::multimap<fs::file_time_type, fs::path> originals;
    for (const auto& entry : fs::directory_iterator(path.parent_path())) {
        if (entry.path().filename().string().starts_with(originals_of(path))) {
            originals.emplace(entry.last_write_time(), entry.path());
        }
    }
    for (; originals.size() > most_originals; originals.erase(originals.begin())) {
        fs::remove(originals.begin()->second);
    }
}

/// What becomes of the file at `path` when it is replaced.
Replaced fate_of(const std::string& path) {
    StartReport unread;
    try {
        const auto text = read_file(path);
        if (is_intact(text)) {
            return Replaced::kept;
        }
        keep_original(path, text, unread);
    } catch (const std::system_error& fault) {
        const auto cause = fault.code().value();
        if (cause == EISDIR || cause == EINVAL) {
            throw; // no file that a save may replace
        }
    }
    return Replaced::lost;
}

} // namespace

std::string saved_file() {
    return below_olt_root(saved_path);
}

bool saved_file_exists() {
    const auto saved = saved_file();
    std::error_code ignored;
    return fs::exists(saved, ignored) || fs::exists(previous_file(saved), ignored);
}

void replace_saved_file(const std::string& path, std::string_view text) {
    write_durably(path, text, fate_of(path));
}

LoadedFile load_saved_file(const std::string& path, StartReport& report) {
    LoadedFile loaded;
    try {
        loaded.text = read_file(path);
    } catch (const std::system_error& fault) {
        loaded.fault = fault.code().value() == ENOENT ? "" : fault.what();
        return loaded;
    }
    auto records = parse_saved_configuration(loaded.text, report);
    if (records.has_value()) {
        loaded.records = std::move(records).value();
    } else {
        loaded.fault = records.error().info->message;
    }
    return loaded;
}

void keep_original(const std::string& path, std::string_view text, StartReport& report) {
    const auto name = fmt::format("{}{:08x}", originals_of(path), checksum(text));
    try {
        keep_under_name(path, name);
        remove_oldest_originals(path);
        report.add(fmt::format("{} as it was is kept as {}", path, name));
    } catch (const std::system_error& fault) {
        report.add(fmt::format("{} could not be kept as it was: {}", path, fault.what()));
    }
}

} // namespace xpon::cfgdb
