#pragma once

#include "simulator/plant/ont_population.hpp"
#include "simulator/plant/optics.hpp"
#include "simulator/plant/plant_time.hpp"
#include "simulator/plant/unevenness.hpp"

namespace xpon::simulator {

/// What decides, besides the path itself, how many bits between an ONT and the OLT go wrong. Events change it, time
/// does not.
struct LineConditions {
    double attenuation_db = 0;
    OdnClass odn_class = OdnClass::b_plus; ///< of the module of the PON port
    bool downstream_fec = true;
    /// When a rogue ONT on the port talks into the others' time.
    PlantTime disturbed_from{};
    PlantTime disturbed_until{};

    bool operator==(const LineConditions&) const = default;
};

/// The share of wrong bits on the line of one ONT, before error correction. Even a good line has some, each its own.
class BitErrorRate {
public:
    static BitErrorRate upstream(const Random& random, const PhysicalOnt& ont, unsigned split,
                                 const LineConditions& conditions);
    static BitErrorRate downstream(const Random& random, const PhysicalOnt& ont, unsigned split,
                                   const LineConditions& conditions);

    /// Over a day without disturbance.
    [[nodiscard]] double mean() const;
    /// The share, summed over the time, in seconds: times a rate of bits it is the number of wrong ones.
    [[nodiscard]] double integral(PlantTime from, PlantTime to) const;

private:
    enum class Way : std::uint8_t { up, down };

    BitErrorRate(const Random& random, const PhysicalOnt& ont, Way way, double missing_db);

    [[nodiscard]] double uneven(PlantTime time) const;

    double floor_;         ///< however strong the signal is
    double from_weakness_; ///< at the mean power of a day
    double day_phase_;
    Unevenness quarters_;
    Unevenness hours_;
    double unevenness_; ///< 0 to 1: all that words can hold
    PlantTime disturbed_from_{};
    PlantTime disturbed_until_{};
};

} // namespace xpon::simulator
