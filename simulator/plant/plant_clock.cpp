#include "simulator/plant/plant_clock.hpp"

namespace xpon::simulator {

PlantClock::PlantClock(PlantTime start, double rate) : base_(start), rate_(rate) {}

PlantTime PlantClock::now() const {
    const std::chrono::duration<double, std::milli> passed = Machine::now() - since_;
    return base_ + PlantTime(static_cast<PlantTime::rep>(passed.count() * rate_));
}

void PlantClock::set_rate(double rate) {
    base_ = now();
    since_ = Machine::now();
    rate_ = rate;
}

void PlantClock::step(PlantTime by) {
    base_ += by;
}

} // namespace xpon::simulator
