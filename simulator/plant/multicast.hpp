#pragma once

#include "simulator/plant/ont_layout.hpp"
#include "simulator/plant/plant_time.hpp"
#include "simulator/plant/random.hpp"

#include <array>
#include <cstdint>
#include <span>

namespace xpon::simulator {

/// There are so many multicast groups; group n from 0 is the address 239.0.0.(n + 1).
inline constexpr unsigned multicast_groups = 64;

/// A time in which an IPTV service has the same groups joined.
struct Viewing {
    PlantTime since;
    PlantTime until; ///< the next one begins
    std::uint8_t count = 0;
    std::array<std::uint8_t, 2> group{}; ///< the first `count`, ascending

    [[nodiscard]] std::span<const std::uint8_t> groups() const& {
        return std::span(group).first(count);
    }
    /// They lie in this object, so one that is about to end has none to give.
    std::span<const std::uint8_t> groups() const&& = delete;
};

/// Who watches television behind one IPTV service: every 10 to 30 minutes, each viewer after its own time, one or two
/// other groups. It watches all the time; what reaches it depends on the ONT's being in service.
class Viewer {
public:
    /// `ont` is the place of the physical ONT, `service` counts from 1; `max_groups` at a time, 0 = no limit.
    Viewer(const Random& random, const OntPosition& ont, unsigned service, unsigned max_groups);

    /// What is watched at the time.
    [[nodiscard]] Viewing at(PlantTime time) const;

    /// The time watched since the plant's start, each of two groups watched at once counted for itself.
    [[nodiscard]] PlantTime watched(PlantTime until) const;
    /// Over a long time.
    [[nodiscard]] double mean_groups() const {
        return static_cast<double>(groups_in_cycle_) / cycle;
    }

private:
    /// Groups at a time repeat after so many viewings, so that sums over any time are quick.
    static constexpr unsigned cycle = 16;

    [[nodiscard]] unsigned count_in(std::int64_t viewing) const;
    /// Counted from the one that was under way at the start; less before it.
    [[nodiscard]] std::int64_t viewing_at(PlantTime time) const;
    /// As watched(), since the start of viewing 0.
    [[nodiscard]] PlantTime watched_since_first(PlantTime until) const;

    Random random_;
    OntPosition ont_;
    unsigned service_;
    unsigned max_groups_;
    PlantTime length_;      ///< of a viewing
    PlantTime under_way_;   ///< how much of viewing 0 was over at the start
    std::uint64_t pattern_; ///< bit n: two groups in the n-th viewing of a cycle
    unsigned groups_in_cycle_ = 0;
    PlantTime watched_at_start_{}; ///< since the start of viewing 0
};

} // namespace xpon::simulator
