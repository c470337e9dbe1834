#include "cfgdb/attendant.hpp"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <ctime>
#include <future>
#include <utility>

#include <semaphore.h>

namespace xpon::cfgdb {
namespace {

using Clock = std::chrono::steady_clock; // CLOCK_MONOTONIC

/// Signals are for the threads of the program, whose waits they end.
class SignalsBlocked {
public:
    SignalsBlocked() {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &before_);
    }
    SignalsBlocked(const SignalsBlocked&) = delete;
    SignalsBlocked& operator=(const SignalsBlocked&) = delete;
    ~SignalsBlocked() {
        pthread_sigmask(SIG_SETMASK, &before_, nullptr);
    }

private:
    sigset_t before_{};
};

/// A turn that one thread gives to another. Half of the wake-ups of a mutex and a condition, and steps are short.
class Turn {
public:
    Turn() {
        sem_init(&semaphore_, 0, 0);
    }
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;
    ~Turn() {
        sem_destroy(&semaphore_);
    }

    void give() {
        sem_post(&semaphore_);
    }
    void take() {
        while (sem_wait(&semaphore_) != 0) {
        }
    }
    /// False when it is not given in time.
    bool take_until(Clock::time_point end) {
        const auto since = end.time_since_epoch();
        const auto seconds = std::chrono::floor<std::chrono::seconds>(since);
        const timespec until{.tv_sec = seconds.count(),
                             .tv_nsec = std::chrono::duration_cast<std::chrono::nanoseconds>(since - seconds).count()};
        int status = 0;
        do {
            status = sem_clockwait(&semaphore_, CLOCK_MONOTONIC, &until);
        } while (status != 0 && errno == EINTR);
        return status == 0;
    }

private:
    sem_t semaphore_{};
};

enum class Progress : std::uint8_t { enters, has_entered, is_given_up };

} // namespace

struct Attendant::State {
    std::packaged_task<void()> steps; ///< keeps what they throw
    std::atomic<Progress> progress = Progress::has_entered;
    bool ends = false; ///< instead of a run
    Turn begin;
    Turn end; ///< given after each run: another may begin

    void serve() {
        for (begin.take(); !ends; begin.take()) {
            steps();
            if (progress == Progress::is_given_up) {
                steps = {}; // the last owner of what they used may be this one
            }
            end.give();
        }
    }

    /// False when it comes too late.
    bool passes_from_entering_to(Progress next) {
        auto expected = Progress::enters;
        return progress.compare_exchange_strong(expected, next);
    }
};

Attendant::Attendant() : state_(std::make_shared<State>()) {
    const SignalsBlocked blocked;
    thread_ = std::thread([state = state_] { state->serve(); });
}

Attendant::~Attendant() {
    const bool is_idle = !owes_end_ || state_->end.take_until({});
    if (!is_idle) {
        // What it does next is to end.
        thread_.detach();
    }
    state_->ends = true;
    state_->begin.give();
    if (is_idle) {
        thread_.join();
    }
}

bool Attendant::run(Step enter, const Step& work, Step leave, std::chrono::milliseconds limit) {
    const auto until = Clock::now() + limit;
    if (owes_end_ && !state_->end.take_until(until)) {
        return false;
    }
    owes_end_ = false;
    state_->steps =
        std::packaged_task<void()>([state = state_.get(), enter = std::move(enter), &work, leave = std::move(leave)] {
            enter();
            state->passes_from_entering_to(Progress::has_entered) ? work() : leave();
        });
    auto outcome = state_->steps.get_future();
    state_->progress = Progress::enters;
    state_->begin.give();
    if (!state_->end.take_until(until)) {
        if (state_->passes_from_entering_to(Progress::is_given_up)) {
            owes_end_ = true;
            return false;
        }
        state_->end.take();
    }
    state_->steps = {};
    outcome.get();
    return true;
}

} // namespace xpon::cfgdb
