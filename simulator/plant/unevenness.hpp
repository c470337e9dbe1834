#pragma once

#include "simulator/plant/random.hpp"

#include <cstdint>

namespace xpon::simulator {

/// A way of counting on that is even in the long run, but faster here and slower there by chance, as rare things come:
/// never back, and never more than twice as fast. What it comes to at a place depends on the key and the place alone.
class Unevenness {
public:
    /// `grain`: what lies farther apart than this has chances of its own.
    Unevenness(const Random& random, Purpose purpose, std::uint64_t key, double grain)
        : random_(random), purpose_(purpose), key_(key), grain_(grain) {}

    [[nodiscard]] double at(double place) const;

private:
    Random random_;
    Purpose purpose_;
    std::uint64_t key_;
    double grain_;
};

} // namespace xpon::simulator
