#pragma once

#include <chrono>
#include <cstddef>

namespace xpon::api_service {

/// Keeps lines that anybody can cause in any number from filling the log: the first ones of each period are written,
/// the others are counted.
class LineLimit {
public:
    using Clock = std::chrono::steady_clock;

    LineLimit(std::size_t lines, Clock::duration period) : lines_(lines), period_(period) {}

    /// Whether one more line may be written; one that may not is counted as held back. The first line begins a period.
    bool admits(Clock::time_point now) {
        if (now - begin_ >= period_ || written_ == 0) {
            begin_ = now;
            written_ = 0;
        }
        if (written_ < lines_) {
            ++written_;
            return true;
        }
        ++held_back_;
        return false;
    }

    [[nodiscard]] bool has_held_back() const {
        return held_back_ > 0;
    }

    /// How many were held back and not told yet; 0 as long as their period lasts.
    std::size_t take_held_back(Clock::time_point now) {
        if (now - begin_ < period_) {
            return 0;
        }
        const auto held_back = held_back_;
        held_back_ = 0;
        return held_back;
    }

private:
    std::size_t lines_;
    Clock::duration period_;
    Clock::time_point begin_;
    std::size_t written_ = 0;
    std::size_t held_back_ = 0;
};

} // namespace xpon::api_service
