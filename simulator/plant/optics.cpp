#include "simulator/plant/optics.hpp"

#include "xpon/peer_side/gpon_rates.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace xpon::simulator {
namespace {

using std::numbers::pi;

constexpr double day_s = 86400;

/// Microseconds that light takes there and back.
double round_trip_us(double km) {
    constexpr double refraction = 1.4677;
    constexpr double light_km_per_us = 0.299792458;
    return 2 * km * refraction / light_km_per_us;
}

double drifted_temperature(const Random& random, const ModuleConditions& module, PlantTime now) {
    constexpr double ambient_c = 25;
    constexpr double warm_c = 30;
    constexpr double load_c = 8;
    constexpr double warming_s = 240;
    const double warm = warm_c + load_c * module.load;
    const double cold_share = std::exp(-std::max(seconds_of(now - module.since), 0.0) / warming_s);
    return warm + (ambient_c - warm) * cold_share + drift(random, module.port, now) + module.extra_degrees;
}

/// How far a module is through its life, 0 to 1: between new and seven years old at the start of the plant's time.
double age(const Random& random, const ModuleConditions& module, PlantTime now) {
    constexpr double life_s = 7 * 365 * day_s;
    return std::min(random.share(Purpose::module_age, {module.port}) + seconds_of(now) / life_s, 1.0);
}

/// How far above the usual 40 degrees, in parts of 40.
double warmth(double temperature) {
    return std::clamp((temperature - 40) / 40, -1.0, 1.0);
}

/// Electronics that are warm draw more, and the supply gives in a little.
double supply_voltage(const Random& random, const ModuleConditions& module, double temperature) {
    return random.between(3.28, 3.32, Purpose::module_voltage, {module.port}) - 0.01 * warmth(temperature);
}

/// As finely as modules are usually read.
ModuleReadings rounded(const ModuleReadings& readings) {
    const auto to = [](double value, double parts) { return std::round(value * parts) / parts; };
    return {.temperature_c = to(readings.temperature_c, 10),
            .voltage_v = to(readings.voltage_v, 1000),
            .bias_ma = to(readings.bias_ma, 100),
            .power = to(readings.power, 1000)};
}

} // namespace

OntPath path_of(const Random& random, const OntPosition& ont, double least_km, double most_km) {
    return {.distance_km = random.between(least_km, most_km, Purpose::ont_distance, {ont.port, ont.ont}),
            .response_us = random.between(34, 36, Purpose::ont_response_time, {ont.port, ont.ont}),
            .launch_dbm = random.between(1.5, 4, Purpose::ont_launch_power, {ont.port, ont.ont}),
            .connectors_db = random.between(0.6, 1.5, Purpose::ont_connectors, {ont.port, ont.ont}),
            .day_phase = random.between(0, 2 * pi, Purpose::ont_day_phase, {ont.port, ont.ont})};
}

std::uint32_t equalization_delay(const OntPath& path, unsigned reach_max_km) {
    constexpr double bits_per_us = gpon_upstream_kbps / 1000.0;
    const double equalized_us = round_trip_us(reach_max_km) + 50;
    const double measured_us = round_trip_us(path.distance_km) + path.response_us;
    return static_cast<std::uint32_t>(std::lround(std::max(equalized_us - measured_us, 0.0) * bits_per_us));
}

double path_loss(const OntPath& path, unsigned split, double attenuation_db) {
    constexpr double loss_per_doubling_db = 3.5;
    constexpr double loss_per_km_db = 0.35;
    const double splitter_db = loss_per_doubling_db * std::log2(std::min(split, 64U));
    return splitter_db + loss_per_km_db * path.distance_km + path.connectors_db + attenuation_db;
}

double received_power(const OntPath& path, unsigned split, double attenuation_db, PlantTime now) {
    const double day_db = day_swing_db * std::sin(2 * pi * seconds_of(now) / day_s + path.day_phase);
    return path.launch_dbm - path_loss(path, split, attenuation_db) + day_db;
}

double error_free_dbm(OdnClass odn_class) {
    constexpr std::array sensitivity_dbm{-24.0, -28.0, -28.0, -29.0, -32.0}; // classes A, B, B+, C, C+
    constexpr double margin_db = 3;
    return sensitivity_dbm.at(static_cast<std::size_t>(odn_class)) + margin_db;
}

double loss_of_signal_dbm(OdnClass odn_class) {
    constexpr double decades = 7; // from 10^-10 to 10^-3
    return error_free_dbm(odn_class) - db_per_decade * decades;
}

ModuleReadings front_module(const Random& random, const ModuleConditions& module, PlantTime now) {
    const double temperature = drifted_temperature(random, module, now);
    const double years = age(random, module, now);
    return rounded({.temperature_c = temperature,
                    .voltage_v = supply_voltage(random, module, temperature),
                    .bias_ma = random.between(6.4, 7.2, Purpose::module_bias, {module.port}) + 0.4 * years +
                               0.4 * warmth(temperature),
                    .power = random.between(0.54, 0.63, Purpose::module_power, {module.port}) - 0.02 * years -
                             0.02 * warmth(temperature)});
}

ModuleReadings pon_module(const Random& random, const ModuleConditions& module, PlantTime now) {
    constexpr double bias_ma_per_degree = 0.15;
    const double temperature = drifted_temperature(random, module, now);
    const double years = age(random, module, now);
    return rounded({.temperature_c = temperature,
                    .voltage_v = supply_voltage(random, module, temperature),
                    // A laser needs more current from year to year, and when it is warm.
                    .bias_ma = 14 + 0.8 * years + 0.2 * std::min(warmth(temperature), 0.0) +
                               bias_ma_per_degree * std::max(temperature - 40, 0.0),
                    .power = random.between(3.05, 3.4, Purpose::module_power, {module.port}) - 0.1 * years -
                             0.05 * warmth(temperature)});
}

double drift(const Random& random, std::uint64_t key, PlantTime now) {
    constexpr double short_period_s = 37 * 60;
    const auto wave = [&](double period_s, Purpose purpose) {
        return std::sin(2 * pi * seconds_of(now) / period_s + random.between(0, 2 * pi, purpose, {key}));
    };
    return wave(day_s, Purpose::day_drift_phase) * 1.4 + wave(short_period_s, Purpose::short_drift_phase) * 0.6;
}

} // namespace xpon::simulator
