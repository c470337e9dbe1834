#pragma once

#include "simulator/plant/random.hpp"

#include <array>
#include <cstdint>

namespace xpon::simulator {

/// How the rate of some traffic goes up and down: with the time of day, most in the evening, and with what its users
/// do. It is made of sines, so that its sum over any time is known at once.
class RateCurve {
public:
    /// Bounds of the rate.
    static constexpr double least = 0.3;
    static constexpr double most = 1.5;

    RateCurve(const Random& random, std::uint64_t key);

    /// The integral of the rate from a fixed time on, in seconds.
    [[nodiscard]] double integral(double seconds) const;

private:
    struct Wave {
        double frequency; ///< radians per second
        double phase;
        double amplitude;
    };

    Wave day_;
    std::array<Wave, 2> habits_;
};

} // namespace xpon::simulator
