#pragma once

#include "xpon/core/c_status.hpp"

#include <any>
#include <functional>
#include <tuple>
#include <utility>

namespace xpon::core {

/// C calls that one caller makes one after another, such as the writes of one record to many places, or questions of
/// one kind. A library behind them may do their work together, at the end of the sequence at the latest: it hands over
/// a function for that, which returns a C status like the calls themselves. It may as well ask ahead, and keep what it
/// learns for the calls to come. Where no library does so, the calls are what they are without it.
class CallSequence {
public:
    CallSequence() : before_(std::exchange(innermost(), this)) {}
    CallSequence(const CallSequence&) = delete;
    CallSequence& operator=(const CallSequence&) = delete;
    /// Does what is left to do, unheard: finish() is for who wants to know.
    ~CallSequence() {
        std::ignore = finish_work();
        innermost() = before_;
    }

    /// The innermost sequence that this thread is in; null in none.
    static CallSequence* current() {
        return innermost();
    }

    /// `work` is called once. It must not throw.
    void do_at_end(std::function<int()> work) {
        work_ = std::move(work);
    }

    /// What a library keeps from call to call, made when it is not there: another library may have taken its place.
    template <class Kept>
    Kept& kept() {
        if (auto* const present = std::any_cast<Kept>(&kept_)) {
            return *present;
        }
        return kept_.emplace<Kept>();
    }

    /// The status of the work that was left for the end.
    [[nodiscard]] int finish_work() {
        return work_ ? std::exchange(work_, nullptr)() : 0;
    }

private:
    static CallSequence*& innermost() {
        static thread_local CallSequence* sequence = nullptr;
        return sequence;
    }

    CallSequence* before_;
    std::function<int()> work_;
    std::any kept_;
};

/// Runs `calls`, which returns a Result, as one sequence. When it succeeds, the work that was left for the end must
/// succeed, too; when it fails, that of the calls before is done all the same.
template <class Calls>
Result<void> in_sequence(LoggerAt log, Calls&& calls) {
    CallSequence sequence;
    BOOST_OUTCOME_TRYV(std::invoke(std::forward<Calls>(calls)));
    return call_c_api(log, [&] { return sequence.finish_work(); });
}

} // namespace xpon::core
