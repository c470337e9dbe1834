#include "simulator/plant/random.hpp"

namespace xpon::simulator {
namespace {

std::uint64_t mix(std::uint64_t state) {
    state += 0x9e3779b97f4a7c15U;
    state = (state ^ state >> 30) * 0xbf58476d1ce4e5b9U;
    state = (state ^ state >> 27) * 0x94d049bb133111ebU;
    return state ^ state >> 31;
}

} // namespace

std::uint64_t Random::number(Purpose purpose, std::initializer_list<std::uint64_t> key) const {
    auto state = mix(mix(seed_) ^ static_cast<std::uint64_t>(purpose));
    for (const auto part : key) {
        state = mix(state ^ part);
    }
    return state;
}

double Random::share(Purpose purpose, std::initializer_list<std::uint64_t> key) const {
    return static_cast<double>(number(purpose, key) >> 11) * 0x1p-53;
}

double Random::between(double least, double most, Purpose purpose, std::initializer_list<std::uint64_t> key) const {
    return least + (most - least) * share(purpose, key);
}

} // namespace xpon::simulator
