#include "client/oltctl/child_process.hpp"

#include "client/oltctl/failure.hpp"

#include <cerrno>
#include <csignal>
#include <system_error>

#include <sys/wait.h>

#include <fmt/format.h>
#include <spawn.h>
#include <unistd.h>

namespace xpon::oltctl {
namespace {

/// Leaves the keys that end programs to the child.
class DeafToKeys {
public:
    DeafToKeys() : interrupt_(std::signal(SIGINT, SIG_IGN)), quit_(std::signal(SIGQUIT, SIG_IGN)) {}
    DeafToKeys(const DeafToKeys&) = delete;
    DeafToKeys& operator=(const DeafToKeys&) = delete;
    ~DeafToKeys() {
        std::signal(SIGINT, interrupt_);
        std::signal(SIGQUIT, quit_);
    }

private:
    void (*interrupt_)(int);
    void (*quit_)(int);
};

} // namespace

int run_child(const std::vector<std::string>& command) {
    std::vector<char*> arguments;
    for (const auto& word : command) {
        arguments.push_back(const_cast<char*>(word.c_str())); // which posix_spawn leaves as they are
    }
    arguments.push_back(nullptr);
    sigset_t keys;
    sigemptyset(&keys);
    sigaddset(&keys, SIGINT);
    sigaddset(&keys, SIGQUIT);
    sigaddset(&keys, SIGPIPE);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setsigdefault(&attributes, &keys);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF);
    const DeafToKeys deaf;
    pid_t child = 0;
    const int error = posix_spawnp(&child, arguments.front(), nullptr, &attributes, arguments.data(), environ);
    posix_spawnattr_destroy(&attributes);
    if (error != 0) {
        throw Failure(ExitStatus::usage, fmt::format("'{}' cannot be started: {}", command.front(),
                                                     std::generic_category().message(error)));
    }
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    constexpr int first_of_signals = 128;
    return WIFSIGNALED(status) ? first_of_signals + WTERMSIG(status) : WEXITSTATUS(status);
}

} // namespace xpon::oltctl
