#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <sys/types.h>

namespace xpon::test {

using Environment = std::vector<std::pair<std::string, std::string>>;

/// A program run by a test. Killed when the object goes, and also when the test's own process dies.
class Process {
public:
    /// `environment` is added to the test's own.
    Process(const std::vector<std::string>& command, const Environment& environment);
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;
    ~Process();

    [[nodiscard]] pid_t pid() const {
        return pid_;
    }
    void send_signal(int number) const;

    /// Exit status, 128 + number when a signal ended it; empty when it still runs after `limit`.
    std::optional<int> wait(std::chrono::milliseconds limit = std::chrono::seconds(30));

    /// Reads standard output until `line` comes; false when it ends or `limit` passes before.
    bool wait_for_line(const std::string& line, std::chrono::milliseconds limit = std::chrono::seconds(30));
    /// All of standard output and standard error so far.
    const std::string& output();

    /// Open descriptors, and resident memory in KiB.
    [[nodiscard]] std::size_t descriptors() const;
    [[nodiscard]] long resident_kib() const;

private:
    bool read_output(std::chrono::milliseconds limit);

    pid_t pid_ = -1;
    int pidfd_ = -1;
    int output_fd_ = -1;
    std::string output_;
    std::optional<int> status_;
};

} // namespace xpon::test
