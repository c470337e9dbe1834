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

/// The share of code words [G.984.3 13] with an error in them.
double damaged_words(double bit_error_rate) {
    constexpr double bits = 255 * 8;
    return -std::expm1(-bit_error_rate * bits);
}

std::uint64_t key_of(const PhysicalOnt& ont, auto way, std::uint64_t what) {
    return (std::uint64_t{ont.position.port} << 16U | ont.position.ont) << 8U | static_cast<std::uint64_t>(way) << 4U |
           what;
}

} // namespace

BitErrorRate::BitErrorRate(const Random& random, const PhysicalOnt& ont, Way way, double missing_db)
    : floor_(rate_of_good_line *
             std::pow(10, random.between(-0.7, 0.8, Purpose::line_errors,
                                         {ont.position.port, ont.position.ont, static_cast<std::uint64_t>(way)}))),
      from_weakness_(std::min(rate_of_good_line * std::pow(10, missing_db / db_per_decade), rate_at_loss)),
      day_phase_(ont.path.day_phase), quarters_(random, Purpose::error_bursts, key_of(ont, way, 0), 700),
      hours_(random, Purpose::error_bursts, key_of(ont, way, 1), 4 * 3600),
      unevenness_(std::clamp(0.8 / damaged_words(mean()) - 1, 0.0, 1.0)) {}

BitErrorRate BitErrorRate::upstream(const Random& random, const PhysicalOnt& ont, unsigned split,
                                    const LineConditions& conditions) {
    const double power = ont.path.launch_dbm - path_loss(ont.path, split, conditions.attenuation_db);
    BitErrorRate rate(random, ont, Way::up, error_free_dbm(conditions.odn_class) - power);
    rate.disturbed_from_ = conditions.disturbed_from;
    rate.disturbed_until_ = conditions.disturbed_until;
    return rate;
}

BitErrorRate BitErrorRate::downstream(const Random& random, const PhysicalOnt& ont, unsigned split,
                                      const LineConditions& conditions) {
    // An ONT of class B+ [G.984.2 Amd 1].
    constexpr double olt_launch_dbm = 3.2;
    constexpr double ont_error_free_dbm = -24;
    const double power = olt_launch_dbm - path_loss(ont.path, split, conditions.attenuation_db);
    return {random, ont, Way::down, ont_error_free_dbm - power};
}

double BitErrorRate::mean() const {
    return floor_ + from_weakness_ * bessel_0;
}

/// The time in seconds as errors know it: they come in swarms, of minutes and of hours.
double BitErrorRate::uneven(PlantTime time) const {
    const double seconds = seconds_of(time);
    constexpr double share_of_quarters = 0.6;
    const double swarming = share_of_quarters * quarters_.at(seconds) + (1 - share_of_quarters) * hours_.at(seconds);
    return seconds + unevenness_ * (swarming - seconds);
}

double BitErrorRate::integral(PlantTime from, PlantTime to) const {
    const double from_s = uneven(from);
    const double to_s = uneven(to);
    const double begin = day_frequency * from_s + day_phase_ + pi / 2;
    const double end = day_frequency * to_s + day_phase_ + pi / 2;
    double waves = 0;
    for (std::size_t nth = 0; nth < bessel.size(); ++nth) {
        const auto harmonic = static_cast<double>(nth + 1);
        waves += 2 * bessel.at(nth) * (std::sin(harmonic * end) - std::sin(harmonic * begin)) / harmonic;
    }
    const double seconds = to_s - from_s;
    const auto disturbed = std::min(to, disturbed_until_) - std::max(from, disturbed_from_);
    return floor_ * seconds + from_weakness_ * (bessel_0 * seconds + waves / day_frequency) +
           rate_when_disturbed * std::max(seconds_of(disturbed), 0.0);
}

} // namespace xpon::simulator
