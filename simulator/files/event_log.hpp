#pragma once

#include <filesystem>
#include <string_view>

namespace xpon::simulator {

/// What happened to the OLT, a line for each event: time [RFC 3339] and text. The file is bounded: beyond 1 MiB it
/// becomes FILE.1 and a new one begins.
class EventLog {
public:
    explicit EventLog(std::filesystem::path file);

    /// An event that cannot be written is lost: a full disk must not stop a peer.
    void write(std::string_view text) const;

private:
    std::filesystem::path file_;
};

} // namespace xpon::simulator
