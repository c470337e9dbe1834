#include "simulator/plant/bit_errors.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace xpon::simulator {
namespace {

using std::numbers::pi;

constexpr double rate_of_good_line = 1e-10;
constexpr double rate_at_loss = 1e-3;
constexpr double rate_when_disturbed = 1e-4;
constexpr double day_frequency = 2 * pi / 86400; // radians per second

// With the day the power moves by `day_swing_db`, so the share of wrong bits by a factor of exp(-z sin x), where
// z = ln(10) * swing / decade. As a Fourier series: I0(z) + 2 * (I1(z) cos y + I2(z) cos 2y + ...), y = x + pi / 2,
// with the modified Bessel functions of that z.
static_assert(day_swing_db / db_per_decade == 0.4);
constexpr double bessel_0 = 1.223588;
constexpr std::array bessel{0.511106, 0.113736, 0.017159, 0.001955}; // I1 to I4

} // namespace

BitErrorRate::BitErrorRate(double missing_db, double day_phase)
    : from_weakness_(std::min(rate_of_good_line * std::pow(10, missing_db / db_per_decade), rate_at_loss)),
      day_phase_(day_phase) {}

BitErrorRate BitErrorRate::upstream(const OntPath& path, unsigned split, const LineConditions& conditions) {
    const double power = path.launch_dbm - path_loss(path, split, conditions.attenuation_db);
    BitErrorRate rate(error_free_dbm(conditions.odn_class) - power, path.day_phase);
    rate.disturbed_from_ = conditions.disturbed_from;
    rate.disturbed_until_ = conditions.disturbed_until;
    return rate;
}

BitErrorRate BitErrorRate::downstream(const OntPath& path, unsigned split, const LineConditions& conditions) {
    // An ONT of class B+ [G.984.2 Amd 1].
    constexpr double olt_launch_dbm = 3.2;
    constexpr double ont_error_free_dbm = -24;
    const double power = olt_launch_dbm - path_loss(path, split, conditions.attenuation_db);
    return {ont_error_free_dbm - power, path.day_phase};
}

double BitErrorRate::mean() const {
    return rate_of_good_line + from_weakness_ * bessel_0;
}

double BitErrorRate::integral(PlantTime from, PlantTime to) const {
    const double begin = day_frequency * seconds_of(from) + day_phase_ + pi / 2;
    const double end = day_frequency * seconds_of(to) + day_phase_ + pi / 2;
    double waves = 0;
    for (std::size_t nth = 0; nth < bessel.size(); ++nth) {
        const auto harmonic = static_cast<double>(nth + 1);
        waves += 2 * bessel.at(nth) * (std::sin(harmonic * end) - std::sin(harmonic * begin)) / harmonic;
    }
    const double seconds = seconds_of(to - from);
    const auto disturbed = std::min(to, disturbed_until_) - std::max(from, disturbed_from_);
    return rate_of_good_line * seconds + from_weakness_ * (bessel_0 * seconds + waves / day_frequency) +
           rate_when_disturbed * std::max(seconds_of(disturbed), 0.0);
}

} // namespace xpon::simulator
