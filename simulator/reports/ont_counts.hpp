#pragma once

#include "simulator/plant/plant.hpp"

#include <cstdint>
#include <optional>

namespace xpon::simulator {

/// The ONT that is configured with a flat index, and what is counted of it.
class OntCounts {
public:
    /// What the ONT keeps: the last of its 15-minute intervals that has finished; without one nothing is counted.
    struct Interval {
        std::uint64_t finished; ///< since the ONT went into service
        OntTally before;
        OntTally after;

        static constexpr double seconds = 900;
    };

    /// Empty when counters of the ONT are not collected, or it is not in service.
    static std::optional<OntCounts> of(const Plant& plant, std::uint16_t index);

    [[nodiscard]] const OntSettings& settings() const {
        return metered_.settings;
    }
    [[nodiscard]] const PhysicalOnt& hardware() const {
        return metered_.hardware;
    }
    [[nodiscard]] const Random& random() const {
        return metered_.given.random;
    }

    [[nodiscard]] Interval last_interval() const;

    /// A rare thing that happens `expected` times on average in the interval: so many times in it, by chance.
    [[nodiscard]] std::uint64_t happened(double expected, const Interval& interval, std::uint64_t what) const;

private:
    OntCounts(const Plant& plant, const Plant::Ont& ont)
        : meter_(*ont.meter), metered_(plant.metered(ont)), now_(plant.now()) {}

    const OntMeter& meter_;
    MeteredOnt metered_;
    PlantTime now_;
};

/// Whether an ONT has services that use the GEM ports that it shares with others.
/// @{
bool has_multicast(const OntSettings& settings);
bool has_broadcast(const OntSettings& settings);
/// @}

/// "Finished intervals": the interval end time of the managed entities, which wraps [G.988 9.1].
constexpr std::uint32_t interval_end_time(const OntCounts::Interval& interval) {
    return static_cast<std::uint8_t>(interval.finished);
}
/// What an ONT says of a count of 64 bits, or of one that fits anyway: its low 32.
constexpr std::uint32_t low_32(std::uint64_t count) {
    return static_cast<std::uint32_t>(count);
}

} // namespace xpon::simulator
