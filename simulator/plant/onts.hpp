#pragma once

#include "simulator/plant/tracked_ont.hpp"

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <vector>

namespace xpon::simulator {

/// All physical ONTs of a plant, in the order in which they are made. `given` is what the plant is given.
class Onts {
public:
    explicit Onts(const PlantParameters& parameters);

    [[nodiscard]] bool contains(const OntPosition& position) const;
    /// Puts one where none is, or in the place of the one that is there; it has no power yet. Something has happened.
    void put(const PhysicalOnt& ont);

    /// Something happened.
    void follow(const Circumstances& given, const Ports& ports, const ReplacedSettings& replaced);
    /// The configuration of these ONTs, of ports, or of both changed, and nothing else happened.
    void follow_configuration(const Circumstances& given, const Ports& ports, const ReplacedSettings& replaced,
                              const ChangedOnts& onts);
    /// Tells the activated ones that `is_meant`, asked with flat indices of configurations, to do something. Returns
    /// the indices of those, ascending.
    std::vector<std::uint16_t> command(const Circumstances& given, OntCommand command,
                                       const std::function<bool(std::uint16_t index)>& is_meant);
    /// The OLT has booted: of what was before its daemons know nothing.
    void forget_last_services();

    [[nodiscard]] std::size_t count() const {
        return onts_.size();
    }
    [[nodiscard]] OntNow at(const Circumstances& given, std::size_t place) const {
        return onts_[place].describe(given);
    }
    /// When its state ends if nothing happens; `never` if it does not.
    [[nodiscard]] PlantTime changes_at(const Circumstances& given, std::size_t place) const {
        return onts_[place].changes_at(given);
    }
    /// The places of those that something may have happened to since the last call.
    std::vector<std::size_t> take_touched();

    [[nodiscard]] std::vector<OntNow> all(const Circumstances& given) const;
    /// The one that is seen where the configuration with this flat index wants it; empty without one.
    [[nodiscard]] std::optional<OntNow> configured_as(const Circumstances& given, std::uint16_t index) const;

private:
    using Places = std::vector<std::size_t>; ///< in `onts_`, ascending

    [[nodiscard]] Places reached_by(const Circumstances& given, const ReplacedSettings& replaced,
                                    const ChangedOnts& changed) const;
    void have_follow(const Places& places, const Circumstances& given, const Ports& ports,
                     const ReplacedSettings& replaced);
    void share_discovery(const Random& random, const Places& starters);

    void touch(std::size_t place);

    std::vector<TrackedOnt> onts_;
    Places touched_;                                        ///< not ascending
    std::vector<bool> is_touched_;                          ///< by place; shorter than `onts_` where none is yet
    std::multimap<std::uint64_t, std::size_t> by_serial_;   ///< to place in `onts_`
    std::array<Places, pon_ports> seen_on_;                 ///< port 1 first
    std::map<std::uint16_t, std::size_t> by_configuration_; ///< flat index to place in `onts_`
};

} // namespace xpon::simulator
