#pragma once

#include "simulator/plant/optics.hpp"
#include "simulator/plant/plant_time.hpp"

namespace xpon::simulator {

/// What decides, besides the path itself, how many bits between an ONT and the OLT go wrong. Events change it, time
/// does not.
struct LineConditions {
    double attenuation_db = 0;
    OdnClass odn_class = OdnClass::b_plus;
    bool downstream_fec = true;
    /// When a rogue ONT on the port talks into the others' time.
    PlantTime disturbed_from{};
    PlantTime disturbed_until{};

    bool operator==(const LineConditions&) const = default;
};

/// The share of wrong bits on the line of one ONT, before error correction.
class BitErrorRate {
public:
    static BitErrorRate upstream(const OntPath& path, unsigned split, const LineConditions& conditions);
    static BitErrorRate downstream(const OntPath& path, unsigned split, const LineConditions& conditions);

    /// Over a day without disturbance.
    [[nodiscard]] double mean() const;
    /// The share, summed over the time, in seconds: times a rate of bits it is the number of wrong ones.
    [[nodiscard]] double integral(PlantTime from, PlantTime to) const;

private:
    BitErrorRate(double missing_db, double day_phase);

    double from_weakness_; ///< at the mean power of a day
    double day_phase_;
    PlantTime disturbed_from_{};
    PlantTime disturbed_until_{};
};

} // namespace xpon::simulator
