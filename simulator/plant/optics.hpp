#pragma once

#include "simulator/plant/ont_layout.hpp"
#include "simulator/plant/plant_time.hpp"
#include "simulator/plant/random.hpp"

#include <cstdint>

namespace xpon::simulator {

/// The fibre between an ONT and the OLT, and the ONT's laser: constant for the life of a plant.
struct OntPath {
    double distance_km;
    double response_us; ///< the ONT's response time [G.984.3: 35 us +-1]
    double launch_dbm;
    double connectors_db;
    double day_phase; ///< radians
};

/// Of an ONT between `least_km` and `most_km` away.
OntPath path_of(const Random& random, const OntPosition& ont, double least_km, double most_km);

/// Bit times of the upstream rate [G.984.3].
std::uint32_t equalization_delay(const OntPath& path, unsigned reach_max_km);

/// Between the ONT and the OLT, in dB. `split` ways of the splitter, of which more than 64 lose no more.
double path_loss(const OntPath& path, unsigned split, double attenuation_db);

/// The received power goes up and down by so much in a day.
inline constexpr double day_swing_db = 0.2;

/// What the OLT receives, in dBm.
double received_power(const OntPath& path, unsigned split, double attenuation_db, PlantTime now);

/// Optical budget [G.984.2].
enum class OdnClass : std::uint8_t { a, b, b_plus, c, c_plus };

/// Down to this power no more than 1 bit in 10^10 is wrong; ten times as many for every `db_per_decade` less.
/// @{
double error_free_dbm(OdnClass odn_class);
inline constexpr double db_per_decade = 0.5;
/// @}

/// Below this power the OLT sees no signal: so many bits are wrong that frames are lost (more than 1 in 1000).
double loss_of_signal_dbm(OdnClass odn_class);

/// What a module measures of itself besides its power.
struct ModuleReadings {
    double temperature_c;
    double voltage_v;
    double bias_ma;
    double power; ///< mW of a front port, dBm of a PON port
};

struct ModuleConditions {
    std::uint64_t port; ///< key of its random values; one of a kind per port
    double load;        ///< 0 to 1
    PlantTime since;    ///< plugged in; it warms up from then on
    double extra_degrees;
};

ModuleReadings front_module(const Random& random, const ModuleConditions& module, PlantTime now);
ModuleReadings pon_module(const Random& random, const ModuleConditions& module, PlantTime now);

/// Slow wandering of a temperature, at most 2 degrees either way.
double drift(const Random& random, std::uint64_t key, PlantTime now);

} // namespace xpon::simulator
