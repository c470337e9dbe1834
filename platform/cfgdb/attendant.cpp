#include "cfgdb/attendant.hpp"

#include <condition_variable>
#include <csignal>
#include <future>
#include <mutex>

namespace xpon::cfgdb {
namespace {

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

struct Job {
    std::packaged_task<void()> step;
    Attendant::Step undo;
    bool is_done = false;
    bool is_given_up = false;
};

} // namespace

struct Attendant::State {
    std::mutex mutex;
    std::condition_variable changed;
    std::shared_ptr<Job> job;
    bool ends = false;

    void work() {
        std::unique_lock lock(mutex);
        for (;;) {
            changed.wait(lock, [this] { return job || ends; });
            if (!job) {
                return;
            }
            auto current = job;
            lock.unlock();
            current->step();
            lock.lock();
            current->is_done = true;
            if (current->is_given_up) {
                lock.unlock();
                current->undo();
                lock.lock();
            }
            job.reset();
            changed.notify_all();
            if (current->is_given_up) {
                // The last owner of what the step used may be this one.
                lock.unlock();
                current.reset();
                lock.lock();
            }
        }
    }

    template <class Condition>
    bool wait(std::unique_lock<std::mutex>& lock, const std::optional<std::chrono::steady_clock::time_point>& end,
              const Condition& condition) {
        if (end) {
            return changed.wait_until(lock, *end, condition);
        }
        changed.wait(lock, condition);
        return true;
    }
};

Attendant::Attendant() : state_(std::make_shared<State>()) {
    const SignalsBlocked blocked;
    thread_ = std::thread([state = state_] { state->work(); });
}

Attendant::~Attendant() {
    bool still_waits = false;
    {
        const std::lock_guard lock(state_->mutex);
        state_->ends = true;
        still_waits = state_->job != nullptr;
    }
    state_->changed.notify_all();
    still_waits ? thread_.detach() : thread_.join();
}

bool Attendant::run(const Step& step, const Step& undo, std::optional<std::chrono::milliseconds> limit) {
    std::optional<std::chrono::steady_clock::time_point> end;
    if (limit) {
        end = std::chrono::steady_clock::now() + *limit;
    }
    const auto job = std::make_shared<Job>(std::packaged_task<void()>(step), undo);
    auto outcome = job->step.get_future();
    std::unique_lock lock(state_->mutex);
    if (!state_->wait(lock, end, [this] { return !state_->job; })) {
        return false;
    }
    state_->job = job;
    state_->changed.notify_all();
    if (!state_->wait(lock, end, [&] { return job->is_done; })) {
        job->is_given_up = true;
        return false;
    }
    lock.unlock();
    outcome.get();
    return true;
}

} // namespace xpon::cfgdb
