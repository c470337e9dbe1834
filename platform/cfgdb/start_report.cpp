#include "cfgdb/start_report.hpp"

#include "cfgdb/file_descriptor.hpp"
#include "cfgdb/keys.hpp"
#include "xpon/peer_side/database_log.hpp"
#include "xpon/peer_side/olt_root.hpp"

#include <algorithm>
#include <chrono>
#include <system_error>

#include <fcntl.h>
#include <fmt/chrono.h>
#include <fmt/format.h>

namespace xpon::cfgdb {
namespace {

constexpr const char* log_file = "/var/log/configuration.log";
/// A configuration of another release can depart in every record.
constexpr std::size_t most_lines = 2000;
/// The same in the logs and in the database.
constexpr std::size_t most_logged_lines = 100;

Key report_key() {
    return Key(Store::meta).add("report");
}

std::string time_now() {
    return fmt::format("{:%F %T}",
                       fmt::localtime(std::chrono::system_clock::to_time_t(std::chrono::system_clock::now())));
}

void shorten(std::vector<std::string>& lines) {
    if (lines.size() > most_logged_lines) {
        const auto rest = lines.size() - most_logged_lines;
        lines.resize(most_logged_lines);
        lines.push_back(fmt::format("{} more lines are in {}", rest, log_file));
    }
}

void log_lines(const std::vector<std::string>& lines) {
    for (const auto& line : lines) {
        core::log(database_log(), core::LogLevel::Warning, "{}", line);
    }
}

std::string joined(const std::vector<std::string>& lines) {
    return fmt::format("{}\n", fmt::join(lines, "\n"));
}

} // namespace

std::string key_of(const RecordId& id) {
    std::string key;
    for (unsigned level = 0; level < element(id.element).depth; ++level) {
        key += fmt::format("{}{}", level == 0 ? "" : ".", id.indices[level] + 1);
    }
    return key;
}

std::string name_of(const RecordId& id) {
    const auto& row = element(id.element);
    return row.depth == 0 ? row.suffix : fmt::format("{} {}", row.suffix, key_of(id));
}

void StartReport::add(std::string text) {
    if (lines_.size() < most_lines) {
        lines_.push_back({.text = std::move(text)});
    } else {
        ++unwritten_;
    }
}

void StartReport::add(const RecordId& id, const std::string& text) {
    const auto [known, is_new] = line_of_text_.try_emplace({id.element, text}, lines_.size());
    if (!is_new) {
        ++lines_[known->second].more;
    } else if (lines_.size() < most_lines) {
        add(fmt::format("{}: {}", name_of(id), text));
    } else {
        line_of_text_.erase(known);
        ++unwritten_;
    }
}

void StartReport::append(const StartReport& other) {
    for (const auto& line : other.lines()) {
        add(line);
    }
}

std::vector<std::string> StartReport::lines() const {
    std::vector<std::string> texts;
    for (const auto& line : lines_) {
        texts.push_back(line.more == 0 ? line.text : fmt::format("{} (and {} more records)", line.text, line.more));
    }
    if (unwritten_ > 0) {
        texts.push_back(fmt::format("and {} more", unwritten_));
    }
    return texts;
}

void StartReport::store(WriteTransaction& transaction) const {
    auto texts = lines();
    shorten(texts);
    texts.insert(texts.begin(), outcome_);
    texts.insert(texts.begin(), time_now());
    const auto text = joined(texts);
    transaction.put(report_key(), std::as_bytes(std::span(text)));
}

void StartReport::tell() const {
    auto texts = lines();
    shorten(texts);
    log_lines(texts);
    core::log(database_log(), empty() ? core::LogLevel::Info : core::LogLevel::Warning, "{}", outcome_);
    if (!empty()) {
        write_log_file();
    }
}

// The configuration counts, not the file about it.
void StartReport::write_log_file() const {
    const auto path = below_olt_root(log_file);
    try {
        const FileDescriptor file(path, O_WRONLY | O_CREAT | O_TRUNC);
        file.require_regular();
        file.write_all(fmt::format("{}\n{}\n{}", time_now(), outcome_, joined(lines())));
    } catch (const std::system_error& fault) {
        core::log(database_log(), core::LogLevel::Warning, "What was left out is not in a file: {}", fault.what());
    }
}

void tell_stored_report(const Transaction& transaction) {
    const auto value = transaction.get(report_key());
    if (!value) {
        return;
    }
    std::string_view rest(reinterpret_cast<const char*>(value->data()), value->size());
    std::vector<std::string> lines;
    while (!rest.empty()) {
        const auto end = std::min(rest.find('\n'), rest.size() - 1);
        lines.emplace_back(rest.substr(0, end));
        rest.remove_prefix(end + 1);
    }
    constexpr std::size_t heading = 2; // time and outcome
    if (lines.size() < heading) {
        return;
    }
    const std::vector<std::string> departures(lines.begin() + heading, lines.end());
    log_lines(departures);
    core::log(database_log(), departures.empty() ? core::LogLevel::Info : core::LogLevel::Warning,
              "At {}, by another process or earlier: {}", lines[0], lines[1]);
}

} // namespace xpon::cfgdb
