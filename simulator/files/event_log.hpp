#pragma once

#include <filesystem>
#include <span>
#include <string>
#include <string_view>

namespace xpon::simulator {

/// What happened to the OLT, a line for each event: time [RFC 3339] and text. The file is bounded: beyond 1 MiB it
/// becomes FILE.1 and a new one begins.
class EventLog {
public:
    explicit EventLog(std::filesystem::path file);

    /// What cannot be written is lost: a full disk must not stop a peer. Control characters are written as "?", so that
    /// each event is one line.
    void write(std::string_view text) const;
    void write(std::span<const std::string> texts) const;

private:
    std::filesystem::path file_;
};

} // namespace xpon::simulator
