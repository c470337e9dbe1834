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
    Attendant::Step step;
    Attendant::Step undo{};
    bool is_done = false;
    bool is_given_up = false;
};

} // namespace

struct Attendant::State {
    std::mutex mutex;
    std::condition_variable changed;
    std::shared_ptr<Job> job;
    Job own_job; ///< for who cannot do without one
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

bool Attendant::run(const Step& step, const Step& undo, std::chrono::milliseconds limit) {
    const auto end = std::chrono::steady_clock::now() + limit;
    const auto task = std::make_shared<std::packaged_task<void()>>(step);
    auto outcome = task->get_future();
    const auto job = std::make_shared<Job>(Job{.step = [task] { (*task)(); }, .undo = undo});
    std::unique_lock lock(state_->mutex);
    if (!state_->changed.wait_until(lock, end, [this] { return !state_->job; })) {
        return false;
    }
    state_->job = job;
    state_->changed.notify_all();
    if (!state_->changed.wait_until(lock, end, [&] { return job->is_done; })) {
        job->is_given_up = true;
        return false;
    }
    lock.unlock();
    outcome.get();
    return true;
}

void Attendant::run_to_end(const Step& step) noexcept {
    std::unique_lock lock(state_->mutex);
    state_->changed.wait(lock, [this] { return !state_->job; });
    auto& job = state_->own_job;
    job = {.step = step};
    state_->job = std::shared_ptr<Job>(state_, &job);
    state_->changed.notify_all();
    state_->changed.wait(lock, [&] { return job.is_done; });
}

} // namespace xpon::cfgdb
