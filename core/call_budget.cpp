#include "xpon/core/call_budget.hpp"

#include <algorithm>
#include <cerrno>
#include <utility>

namespace xpon::core {
namespace {

CallBudget*& innermost() {
    static thread_local CallBudget* budget = nullptr;
    return budget;
}

} // namespace

CallBudget::CallBudget(Clock::duration time, const std::atomic<bool>& goes_on)
    : outer_(std::exchange(innermost(), this)), end_(Clock::now() + time), goes_on_(&goes_on) {}

CallBudget::CallBudget(Clock::duration time)
    : outer_(std::exchange(innermost(), this)), end_(Clock::now() + time),
      goes_on_(outer_ == nullptr ? nullptr : outer_->goes_on_) {}

CallBudget::~CallBudget() {
    innermost() = outer_;
}

int CallBudget::refusal() {
    const auto* const budget = innermost();
    if (budget == nullptr) {
        return 0;
    }
    if (budget->goes_on_ != nullptr && !budget->goes_on_->load(std::memory_order_acquire)) {
        return EINTR;
    }
    return Clock::now() < budget->end_ ? 0 : ETIMEDOUT;
}

CallBudget::Clock::time_point CallBudget::limit(Clock::time_point deadline) {
    const auto* const budget = innermost();
    return budget == nullptr ? deadline : std::min(deadline, budget->end_);
}

Result<void> check_call_budget(LoggerAt log) {
    errno = CallBudget::refusal();
    return check_c_status(log, errno == 0 ? 0 : -1);
}

} // namespace xpon::core
