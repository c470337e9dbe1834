#pragma once

#include "simulator/plant/tracked_ont.hpp"

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

    /// Where each of them is; asked before something happens, and handed to follow() after it.
    [[nodiscard]] std::vector<OntPoint> points(const Circumstances& given) const;
    /// Something happened. `before`: the configuration until now.
    void follow(const Circumstances& given, const Ports& ports, const std::vector<OntPoint>& points,
                const RunningConfiguration& before);
    /// Tells the activated ones that `is_meant`, asked with flat indices of configurations, to do something. Returns
    /// the indices of those, ascending.
    std::vector<std::uint16_t> command(const Circumstances& given, OntCommand command,
                                       const std::function<bool(std::uint16_t index)>& is_meant);
    /// The OLT has booted: of what was before its daemons know nothing.
    void forget_last_services();

    [[nodiscard]] std::vector<OntNow> all(const Circumstances& given) const;
    /// The one that is seen where the configuration with this flat index wants it; empty without one.
    [[nodiscard]] std::optional<OntNow> configured_as(const Circumstances& given, std::uint16_t index) const;

private:
    void share_discovery(const Random& random, const std::vector<bool>& starts);

    std::vector<TrackedOnt> onts_;
    std::map<std::uint16_t, std::size_t> by_configuration_; ///< flat index to place in `onts_`
};

} // namespace xpon::simulator
