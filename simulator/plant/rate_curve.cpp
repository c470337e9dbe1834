#include "simulator/plant/rate_curve.hpp"

#include <cmath>
#include <numbers>

namespace xpon::simulator {
namespace {

using std::numbers::pi;

constexpr double hour_s = 3600;

// (0.6 + 0.4 * day) * noise with a day from 0 to 1 and a noise from 0.5 to 1.5.
constexpr double day_mean = 0.8;
constexpr double day_amplitude = 0.2;
constexpr double slow_amplitude = 0.2;
constexpr double quick_amplitude = 0.3;
static_assert((day_mean - day_amplitude) * (1 - slow_amplitude - quick_amplitude) >= RateCurve::least - 1e-12);
static_assert((day_mean + day_amplitude) * (1 + slow_amplitude + quick_amplitude) <= RateCurve::most + 1e-12);

} // namespace

RateCurve::RateCurve(const Random& random, std::uint64_t key) {
    const auto choose = [&](double from, double to, std::uint64_t what) {
        return random.between(from, to, Purpose::traffic_curve, {key, what});
    };
    const auto wave = [&](double period_s, double phase, double amplitude) {
        return Wave{2 * pi / period_s, phase, amplitude};
    };
    const double peak_s = choose(18.5, 21.5, 0) * hour_s;
    day_ = wave(24 * hour_s, -2 * pi * peak_s / (24 * hour_s), day_amplitude);
    habits_ = {wave(choose(2, 7, 1) * hour_s, choose(0, 2 * pi, 2), slow_amplitude),
               wave(choose(0.15, 0.8, 3) * hour_s, choose(0, 2 * pi, 4), quick_amplitude)};
}

double RateCurve::integral(double seconds) const {
    // Of (m + d cos A) * (1 + a sin B + ...), with cos A sin B = (sin(B + A) + sin(B - A)) / 2.
    const double day = day_.frequency * seconds + day_.phase;
    const double cos_day = std::cos(day);
    const double sin_day = std::sin(day);
    double sum = day_mean * seconds + day_.amplitude * sin_day / day_.frequency;
    for (const auto& habit : habits_) {
        const double angle = habit.frequency * seconds + habit.phase;
        const double cosines = std::cos(angle) * cos_day;
        const double sines = std::sin(angle) * sin_day;
        const double mixed = (cosines - sines) / (habit.frequency + day_.frequency) +
                             (cosines + sines) / (habit.frequency - day_.frequency);
        sum -= habit.amplitude * (day_mean * std::cos(angle) / habit.frequency + day_.amplitude * mixed / 2);
    }
    return sum;
}

} // namespace xpon::simulator
