#pragma once

#include <algorithm>
#include <chrono>

namespace xpon::gateway {

/// Admits `burst` events at once and `rate` per second in the long run.
class TokenBucket {
public:
    using Clock = std::chrono::steady_clock;

    TokenBucket(double rate, double burst, Clock::time_point now)
        : rate_(rate), burst_(burst), tokens_(burst), filled_(now) {}

    bool take(Clock::time_point now) {
        tokens_ = std::min(burst_, tokens_ + rate_ * std::chrono::duration<double>(now - filled_).count());
        filled_ = now;
        if (tokens_ < 1) {
            return false;
        }
        tokens_ -= 1;
        return true;
    }

private:
    double rate_;
    double burst_;
    double tokens_;
    Clock::time_point filled_;
};

} // namespace xpon::gateway
