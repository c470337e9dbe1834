#pragma once

#include "xpon/core/c_status.hpp"
#include "xpon/core/result.hpp"

#include <atomic>
#include <chrono>

namespace xpon::core {

/// The time that one caller has for all of its calls to other processes together, such as those that answer one
/// request of a client. It asks before each call whether there may be one more. A library behind the calls waits no
/// longer than what is left of the time; where a library does not do so, a call takes its own time.
class CallBudget {
public:
    using Clock = std::chrono::steady_clock;

    /// There may be calls for `time`, while `goes_on` holds, which must outlive this object.
    CallBudget(Clock::duration time, const std::atomic<bool>& goes_on);
    /// For calls that are known to take longer than what their caller has: the time is their own, whether they go on
    /// is still the caller's.
    explicit CallBudget(Clock::duration time);
    ~CallBudget();
    CallBudget(const CallBudget&) = delete;
    CallBudget& operator=(const CallBudget&) = delete;

    /// Why this thread may make no more calls: EINTR when it is to stop, ETIMEDOUT when the time is used up, else 0. A
    /// call that has begun is not disturbed.
    static int refusal();

    /// `deadline`, or the end of this thread's time when that comes first.
    static Clock::time_point limit(Clock::time_point deadline);

private:
    CallBudget* outer_;
    Clock::time_point end_;
    const std::atomic<bool>* goes_on_; ///< null outside of any caller that can be stopped
};

/// The error of a call that fails with the refusal, when there is one.
Result<void> check_call_budget(LoggerAt log);

} // namespace xpon::core
