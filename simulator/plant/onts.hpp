#pragma once

#include "simulator/plant/plant_description.hpp"
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
    /// The plant has been running for `past` when the simulation begins: ONTs were switched on now and then since, the
    /// last one some minutes ago. To be asked for at the plant's start.
    void spread_over(PlantTime past, const Random& random);

    /// After reading, follow() has to come. `plant`: whose ONTs they are.
    template <class Archive>
    void archive(Archive& state, const PlantDescription& plant) {
        auto count = onts_.size();
        state(count);
        for (std::size_t place = 0; place < count; ++place) {
            if constexpr (Archive::reads) {
                PhysicalOnt ont{};
                std::ptrdiff_t model = 0;
                state(ont.position, ont.serial, model, ont.path, ont.is_switched_on);
                ont.model = &plant.ont_models.at(static_cast<std::size_t>(model));
                put(ont, place);
            } else {
                const auto& ont = onts_[place].hardware();
                state(ont.position, ont.serial, ont.model - plant.ont_models.data(), ont.path, ont.is_switched_on);
            }
            state(onts_[place]);
        }
    }

    /// Those in service are counted up to the time, once and for all.
    void count_until(const Circumstances& given, PlantTime time);
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

    /// The one that is seen where the configuration with this flat index wants it; empty without one.
    [[nodiscard]] std::optional<OntNow> configured_as(const Circumstances& given, std::uint16_t index) const;

private:
    /// Puts one in the place of another, or behind all others.
    void put(const PhysicalOnt& ont, std::size_t place);
    using Places = std::vector<std::size_t>; ///< in `onts_`, ascending

    [[nodiscard]] Places reached_by(const Circumstances& given, const ReplacedSettings& replaced,
                                    const ChangedOnts& changed) const;
    void have_follow(const Places& places, const Circumstances& given, const Ports& ports,
                     const ReplacedSettings& replaced);
    void share_discovery(const Random& random, const Places& starters);

    void touch(std::size_t place);

    std::vector<TrackedOnt> onts_;
    Places touched_;                                      ///< not ascending
    std::vector<bool> is_touched_;                        ///< by place; shorter than `onts_` where none is yet
    std::multimap<std::uint64_t, std::size_t> by_serial_; ///< to place in `onts_`
    std::array<Places, pon_ports> seen_on_;               ///< port 1 first
    OntTable<std::size_t> by_configuration_;              ///< to place in `onts_`
};

} // namespace xpon::simulator
