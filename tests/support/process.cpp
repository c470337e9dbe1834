#include "tests/support/process.hpp"

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <ranges>
#include <stdexcept>
#include <string_view>

#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace xpon::test {
namespace {

bool readable(int descriptor, std::chrono::milliseconds limit) {
    pollfd entry{.fd = descriptor, .events = POLLIN, .revents = 0};
    return poll(&entry, 1, static_cast<int>(limit.count())) > 0;
}

/// Pointers into `texts`, with the null that ends them.
std::vector<char*> pointers_to(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    std::ranges::transform(texts, std::back_inserter(pointers), [](std::string& text) { return text.data(); });
    pointers.push_back(nullptr);
    return pointers;
}

/// "NAME=value" of this process's environment, with `changes`.
std::vector<std::string> environment_with(const Environment& changes) {
    std::map<std::string, std::string> all;
    for (char** entry = environ; *entry != nullptr; ++entry) {
        const std::string_view text(*entry);
        const auto name = text.substr(0, text.find('='));
        all.insert_or_assign(std::string(name), std::string(text));
    }
    for (const auto& [name, value] : changes) {
        all.insert_or_assign(name, name + "=" + value);
    }
    std::vector<std::string> texts;
    std::ranges::copy(all | std::views::values, std::back_inserter(texts));
    return texts;
}

/// Calls only what may be called between fork and exec when the parent has threads: no memory, no locks.
[[noreturn]] void become(char** arguments, char** environment, int output, pid_t parent) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != parent) {
        _exit(127); // it died before the line above
    }
    dup2(output, STDOUT_FILENO);
    dup2(output, STDERR_FILENO);
    close(STDIN_FILENO);
    open("/dev/null", O_RDONLY);
    execve(arguments[0], arguments, environment);
    _exit(127);
}

} // namespace

Process::Process(const std::vector<std::string>& command, const Environment& environment) {
    auto words = command;
    auto variables = environment_with(environment);
    auto arguments = pointers_to(words);
    auto entries = pointers_to(variables);
    std::array<int, 2> pipe_ends{};
    if (pipe2(pipe_ends.data(), O_CLOEXEC) != 0) {
        throw std::runtime_error("pipe2 failed");
    }
    const auto own_pid = getpid();
    pid_ = fork();
    if (pid_ == 0) {
        become(arguments.data(), entries.data(), pipe_ends[1], own_pid);
    }
    close(pipe_ends[1]);
    output_fd_ = pipe_ends[0];
    pidfd_ = static_cast<int>(syscall(SYS_pidfd_open, pid_, 0));
    if (pid_ < 0 || pidfd_ < 0) {
        throw std::runtime_error("cannot start " + command.front());
    }
}

Process::~Process() {
    if (!status_) {
        send_signal(SIGKILL);
        wait();
    }
    close(pidfd_);
    close(output_fd_);
}

void Process::send_signal(int number) const {
    syscall(SYS_pidfd_send_signal, pidfd_, number, nullptr, 0);
}

std::optional<int> Process::wait(std::chrono::milliseconds limit) {
    if (!status_ && readable(pidfd_, limit)) {
        int status = 0;
        waitpid(pid_, &status, 0);
        status_ = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    }
    return status_;
}

bool Process::read_output(std::chrono::milliseconds limit) {
    std::array<char, 4096> buffer{};
    if (!readable(output_fd_, limit)) {
        return false;
    }
    const auto count = read(output_fd_, buffer.data(), buffer.size());
    output_.append(buffer.data(), static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    return count > 0;
}

bool Process::wait_for_line(const std::string& line, std::chrono::milliseconds limit) {
    const auto deadline = std::chrono::steady_clock::now() + limit;
    while (("\n" + output_).find("\n" + line + "\n") == std::string::npos) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
        if (left.count() <= 0 || !read_output(left)) {
            return false;
        }
    }
    return true;
}

const std::string& Process::output() {
    while (read_output(std::chrono::milliseconds(0))) {
    }
    return output_;
}

std::size_t Process::descriptors() const {
    const std::filesystem::directory_iterator entries("/proc/" + std::to_string(pid_) + "/fd");
    return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}

long Process::resident_kib() const {
    std::ifstream file("/proc/" + std::to_string(pid_) + "/statm");
    long pages = 0;
    file >> pages >> pages;
    return pages * sysconf(_SC_PAGESIZE) / 1024;
}

} // namespace xpon::test
