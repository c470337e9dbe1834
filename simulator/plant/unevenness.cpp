#include "simulator/plant/unevenness.hpp"

#include <cmath>

namespace xpon::simulator {

double Unevenness::at(double place) const {
    // From each grain's begin to the next one's it comes, on a straight line, from a point of the one to a point of the
    // other that are each chosen by chance.
    const double grain = std::floor(place / grain_);
    const double within = place / grain_ - grain;
    const auto nth = static_cast<std::uint64_t>(static_cast<std::int64_t>(grain));
    const double from = random_.share(purpose_, {key_, nth});
    const double to = 1 + random_.share(purpose_, {key_, nth + 1});
    return (grain + from + (to - from) * within) * grain_;
}

} // namespace xpon::simulator
