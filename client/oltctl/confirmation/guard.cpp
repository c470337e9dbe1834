#include "client/oltctl/confirmation/guard.hpp"

#include "client/oltctl/confirmation/guard_lock.hpp"
#include "client/oltctl/confirmation/restoration.hpp"
#include "client/oltctl/failure.hpp"
#include "xpon/core/unique_fd.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <ctime>
#include <exception>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>

#include <sys/prctl.h>
#include <sys/wait.h>

#include <fcntl.h>
#include <fmt/chrono.h>
#include <fmt/format.h>
#include <syslog.h>
#include <unistd.h>

namespace xpon::oltctl {
namespace {

constexpr int keep_it = SIGUSR1;
constexpr int take_it_back = SIGUSR2;

constexpr int longest_pause = 16; ///< seconds between two attempts; who logs in has the guard hurry

enum class Order { none, keep, take_back };

/// Waits a second at most for what the guard may be told.
Order wait_for_order(const sigset_t& orders) {
    const timespec second{.tv_sec = 1, .tv_nsec = 0};
    const int number = sigtimedwait(&orders, nullptr, &second);
    return number == keep_it ? Order::keep : number == -1 ? Order::none : Order::take_back;
}

std::string time_of_day() {
    return fmt::format("{:%H:%M:%S}", fmt::localtime(std::time(nullptr)));
}

/// What one guard does with its commit.
class Guard {
public:
    Guard(const UnconfirmedCommit& commit, std::chrono::milliseconds patience)
        : commit_(commit), restoration_(commit, patience), file_(commit.session.port) {
        sigemptyset(&orders_);
        for (const int number : {keep_it, take_it_back, SIGTERM}) {
            sigaddset(&orders_, number);
        }
        sigprocmask(SIG_BLOCK, &orders_, nullptr);
    }

    /// False when another guard is at work.
    bool take_post() {
        lock_.emplace(file_.lock_path());
        if (!lock_->take()) {
            return false;
        }
        file_.write(commit_);
        return true;
    }

    void stand() {
        auto order = Order::none;
        while (order == Order::none && !commit_.is_overdue()) {
            order = wait_for_order(orders_);
            return_to_post();
        }
        for (int pause = 1; order != Order::keep && !restored(); pause = std::min(2 * pause, longest_pause)) {
            order = Order::none;
            for (int second = 0; second < pause && order == Order::none; ++second) {
                order = wait_for_order(orders_);
                return_to_post();
            }
        }
        if (order == Order::keep) {
            file_.remove();
        }
    }

private:
    /// When the user logs out everywhere the machine removes XDG_RUNTIME_DIR with all that is in it. As soon as it is
    /// there again, others have to find the commit.
    void return_to_post() {
        if (!lock_->is_in_place() && std::filesystem::exists(file_.path().parent_path())) {
            take_post();
        }
    }

    bool restored() {
        try {
            restoration_.attempt();
        } catch (const std::exception& error) {
            if (commit_.trouble != error.what()) {
                commit_.trouble = error.what();
                syslog(LOG_ERR, "The configuration of before a commit could not be restored yet: %s", error.what());
                write([this] { file_.write(commit_); });
            }
            return false;
        }
        const auto outcome = fmt::format(
            "Nobody confirmed the last commit: since {} the configuration of before it runs again.", time_of_day());
        syslog(LOG_WARNING, "%s", outcome.c_str());
        write([&] { file_.write_outcome(outcome); });
        return true;
    }

    /// The file may be impossible to write at present: the commit matters more.
    template <class Write>
    static void write(Write&& write) {
        try {
            write();
        } catch (const Failure& failure) {
            syslog(LOG_WARNING, "%s", failure.what());
        }
    }

    UnconfirmedCommit commit_;
    Restoration restoration_;
    UnconfirmedCommitFile file_;
    std::optional<GuardLock> lock_;
    sigset_t orders_{};
};

/// What the program that goes on has open is no business of the guard, but for the pipe.
void close_all_but(int kept) {
    close_range(STDERR_FILENO + 1, static_cast<unsigned>(kept) - 1, 0);
    close_range(static_cast<unsigned>(kept) + 1, ~0U, 0);
}

void leave_terminal() {
    setsid();
    std::signal(SIGHUP, SIG_IGN);
    std::signal(SIGINT, SIG_IGN);
    prctl(PR_SET_NAME, "oltctl-guard");
    const core::UniqueFd nothing(open("/dev/null", O_RDWR | O_CLOEXEC));
    for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        dup2(nothing.get(), standard);
    }
    if (chdir("/") != 0) {
        syslog(LOG_WARNING, "The guard of a commit stays in its folder");
    }
    openlog("oltctl", LOG_PID, LOG_USER);
}

/// The guard in a process of its own. What goes wrong is told to `starter`, a pipe; a byte 0 says that all is well.
void guard_process(const UnconfirmedCommit& commit, std::chrono::milliseconds patience, int starter) {
    std::string answer(1, '\0');
    try {
        Guard guard(commit, patience);
        const bool is_first = guard.take_post();
        answer = is_first ? answer : "Another commit waits to be confirmed.";
        const bool was_heard = write(starter, answer.data(), answer.size()) > 0;
        close(starter);
        if (is_first && was_heard) {
            guard.stand();
        }
    } catch (const std::exception& error) {
        const std::string why = error.what();
        if (write(starter, why.data(), why.size()) < 0) {
            syslog(LOG_ERR, "%s", error.what());
        }
    }
}

/// Starts the guard, and starts it again when a signal ends it.
void overseer_process(const UnconfirmedCommit& commit, std::chrono::milliseconds patience, core::UniqueFd starter) {
    constexpr int most_lives = 100; // who falls over that often has a fault of its own
    for (int life = 0; life < most_lives; ++life) {
        if (life > 0 && !UnconfirmedCommitFile(commit.session.port).read()) {
            return; // confirmed by somebody who found no guard
        }
        const pid_t guard = fork();
        if (guard == 0) {
            guard_process(commit, patience, starter.get());
            std::_Exit(0);
        }
        starter = core::UniqueFd(open("/dev/null", O_WRONLY | O_CLOEXEC)); // nobody waits for the next ones
        int status = 0;
        while (guard > 0 && waitpid(guard, &status, 0) < 0 && errno == EINTR) {
        }
        if (guard < 0 || !WIFSIGNALED(status)) {
            return;
        }
    }
}

/// Ends the guard that is there, if any, and waits for its end. The lock stays with the caller.
void dismiss_guard(const GuardLock& lock) {
    if (const auto guard = lock.holder()) {
        kill(*guard, keep_it);
    }
    lock.wait_and_take();
}

} // namespace

void start_guard(const UnconfirmedCommit& commit, std::chrono::milliseconds patience) {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) {
        throw Failure(ExitStatus::refused, "No guard can be started. Nothing was committed.");
    }
    const core::UniqueFd from_guard(ends[0]);
    core::UniqueFd to_starter(ends[1]);
    const pid_t child = fork();
    if (child == 0) {
        leave_terminal();
        close_all_but(to_starter.get());
        if (fork() == 0) {
            overseer_process(commit, patience, std::move(to_starter));
        }
        std::_Exit(0);
    }
    to_starter = core::UniqueFd();
    waitpid(child, nullptr, 0);
    std::array<char, 1024> answer{};
    const auto length = read(from_guard.get(), answer.data(), answer.size());
    if (length != 1 || answer[0] != '\0') {
        throw Failure(ExitStatus::refused,
                      fmt::format("No guard can be started: {}",
                                  length > 0 ? std::string(answer.data(), static_cast<std::size_t>(length))
                                             : "it ended at once."));
    }
}

void confirm(std::uint16_t port) {
    const UnconfirmedCommitFile file(port);
    if (!file.read()) {
        throw Failure(ExitStatus::refused, "No commit waits to be confirmed.");
    }
    const GuardLock lock(file.lock_path());
    dismiss_guard(lock);
    const auto left = file.read();
    file.remove();
    if (left && !left->commit) {
        throw Failure(ExitStatus::refused, left->outcome);
    }
}

void restore_now(std::uint16_t port, std::chrono::milliseconds patience) {
    const UnconfirmedCommitFile file(port);
    auto content = file.read();
    if (!content || !content->commit) {
        throw Failure(ExitStatus::refused, content ? content->outcome : "No commit waits to be confirmed.");
    }
    // The guard goes, and what it would have done is done here, where it can be seen. When that fails, the next call
    // starts a new guard.
    const GuardLock lock(file.lock_path());
    dismiss_guard(lock);
    file.write(*content->commit);
    Restoration(*content->commit, patience).attempt();
    file.remove();
}

std::string news_of_commit(std::uint16_t port, std::chrono::milliseconds patience) {
    const UnconfirmedCommitFile file(port);
    const auto content = file.read();
    if (!content) {
        return "";
    }
    if (!content->commit) {
        file.remove();
        return content->outcome;
    }
    std::string news;
    const GuardLock lock(file.lock_path());
    if (!lock.holder()) {
        start_guard(*content->commit, patience);
        news = "The guard of the commit that nobody confirmed was gone; there is a new one. ";
    }
    if (!content->commit->trouble.empty()) {
        news += "The last commit was not confirmed, and the configuration of before it could not be restored yet: " +
                content->commit->trouble;
    }
    return news;
}

void hurry_guard(std::uint16_t port) {
    const UnconfirmedCommitFile file(port);
    const auto content = file.read();
    if (content && content->commit && content->commit->is_overdue()) {
        if (const auto guard = GuardLock(file.lock_path()).holder()) {
            kill(*guard, take_it_back);
        }
    }
}

bool is_commit_unconfirmed(std::uint16_t port) {
    const auto content = UnconfirmedCommitFile(port).read();
    return content && content->commit;
}

} // namespace xpon::oltctl
