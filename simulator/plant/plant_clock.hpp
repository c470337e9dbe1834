#pragma once

#include "simulator/plant/plant_time.hpp"

#include <chrono>

namespace xpon::simulator {

/// How the plant's time follows the machine's.
class PlantClock {
public:
    static constexpr double largest_rate = 1000;

    /// `rate` 1: as fast as real time; 0: it moves by step() only; at most `largest_rate`.
    PlantClock(PlantTime start, double rate);

    [[nodiscard]] PlantTime now() const;
    [[nodiscard]] double rate() const {
        return rate_;
    }
    /// Goes on from the present time at another rate.
    void set_rate(double rate);
    /// Jumps ahead, whatever the rate.
    void step(PlantTime by);

private:
    using Machine = std::chrono::steady_clock;

    PlantTime base_; ///< the plant's time at `since_`
    Machine::time_point since_ = Machine::now();
    double rate_;
};

} // namespace xpon::simulator
