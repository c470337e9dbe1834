#include "cfgdb/soundness.hpp"

#include "cfgdb/file_descriptor.hpp"
#include "cfgdb/page_survey.hpp"

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <system_error>

#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/time.h>
#include <sys/wait.h>

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

namespace xpon::cfgdb {
namespace {

/// What the child ends with.
enum Outcome : int { sound = 0, damaged = 10, unable = 11 };

/// The look waits for a process that writes, and that one may be stopped.
constexpr timeval longest_wait_for_writer{0, 300'000};
constexpr timeval longest_look{3, 0};

/// SIGALRM comes after this time.
void set_alarm(const timeval& limit) {
    const itimerval timer{{0, 0}, limit};
    setitimer(ITIMER_REAL, &timer, nullptr);
}

void die_quietly_of_faults() {
    for (const int number : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT, SIGALRM}) {
        std::signal(number, SIG_DFL);
    }
    sigset_t all;
    sigfillset(&all);
    sigprocmask(SIG_UNBLOCK, &all, nullptr);
    const rlimit none{0, 0};
    setrlimit(RLIMIT_CORE, &none);
    const core::UniqueFd nowhere(open("/dev/null", O_WRONLY | O_CLOEXEC)); // LMDB prints what it stumbles over
    dup2(nowhere.get(), STDERR_FILENO);
    set_alarm(longest_wait_for_writer);
    prctl(PR_SET_PDEATHSIG, SIGKILL); // nobody waits for the outcome then
}

[[noreturn]] void look(const std::string& folder, int report) {
    die_quietly_of_faults();
    int outcome = sound;
    std::string text;
    try {
        text = survey_database(folder, [] { set_alarm(longest_look); });
        outcome = text.empty() ? sound : damaged;
    } catch (const std::exception& fault) {
        text = fault.what();
        outcome = unable;
    }
    if (write(report, text.data(), text.size()) < 0) {
        outcome = unable;
    }
    _exit(outcome);
}

std::string read_report(int fd) {
    std::string text;
    char buffer[512];
    for (;;) {
        const auto count = read(fd, buffer, sizeof(buffer));
        if (count > 0) {
            text.append(buffer, static_cast<std::size_t>(count));
        } else if (count == 0 || errno != EINTR) {
            return text;
        }
    }
}

int wait_for(pid_t child) {
    int status = 0;
    while (waitpid(child, &status, 0) < 0) {
        require_file_step(errno == EINTR, "waitpid", "");
    }
    return status;
}

bool is_death_of_damage(int number) {
    return number == SIGSEGV || number == SIGBUS || number == SIGFPE || number == SIGILL || number == SIGABRT;
}

} // namespace

std::optional<std::string> find_damage(const std::string& folder) {
    std::error_code ignored;
    if (!std::filesystem::exists(folder + "/data.mdb", ignored)) {
        return {};
    }
    int ends[2] = {-1, -1};
    require_file_step(pipe2(ends, O_CLOEXEC) == 0, "pipe", folder);
    const core::UniqueFd reading(ends[0]);
    core::UniqueFd writing(ends[1]);
    const auto child = fork();
    require_file_step(child >= 0, "fork", folder);
    if (child == 0) {
        look(folder, writing.get());
    }
    writing = core::UniqueFd();
    auto text = read_report(reading.get());
    const int status = wait_for(child);
    if (WIFEXITED(status) && WEXITSTATUS(status) == sound) {
        return {};
    }
    if (WIFEXITED(status) && WEXITSTATUS(status) == damaged) {
        return text;
    }
    if (WIFSIGNALED(status) && is_death_of_damage(WTERMSIG(status))) {
        return fmt::format("reading it ends with signal {}", WTERMSIG(status));
    }
    if (WIFSIGNALED(status) && WTERMSIG(status) == SIGALRM) {
        // Whoever writes in it has it open and found it sound; checksums tell of what is damaged since.
        return {};
    }
    throw std::system_error(ECANCELED, std::generic_category(),
                            fmt::format("{} could not be looked through: {}", folder, text));
}

} // namespace xpon::cfgdb
