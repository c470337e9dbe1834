#pragma once

#include "client/oltctl/session/session_file.hpp"

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace xpon::oltctl {

/// A commit that is taken back unless somebody confirms it: what its guard knows of it, and what other calls of the
/// program read.
struct UnconfirmedCommit {
    KeptSession session;
    /// Of the machine's monotonic clock, which all processes share until the next start.
    std::chrono::steady_clock::time_point deadline;
    std::string before;  ///< the records that were changed, as they ran before: a document
    std::string trouble; ///< why taking it back has failed so far; empty when it has not

    [[nodiscard]] bool is_overdue() const {
        return std::chrono::steady_clock::now() >= deadline;
    }
};

/// Its file of mode 0600 below XDG_RUNTIME_DIR, one per service.
class UnconfirmedCommitFile {
public:
    explicit UnconfirmedCommitFile(std::uint16_t port);

    /// What is kept: the commit, or in its place what has become of it, for whoever asks next.
    struct Content {
        std::optional<UnconfirmedCommit> commit;
        std::string outcome;
    };
    /// Empty when there is no such file.
    [[nodiscard]] std::optional<Content> read() const;
    void write(const UnconfirmedCommit& commit) const;
    void write_outcome(const std::string& outcome) const;
    void remove() const;

    [[nodiscard]] const std::filesystem::path& path() const {
        return path_;
    }
    /// The file whose lock the guard holds.
    [[nodiscard]] std::filesystem::path lock_path() const;

private:
    std::filesystem::path path_;
    std::uint16_t port_;
};

} // namespace xpon::oltctl
