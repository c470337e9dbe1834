#pragma once

#include "simulator/plant/active_faults.hpp"
#include "simulator/plant/ont_layout.hpp"
#include "simulator/plant/plant_time.hpp"

#include <map>
#include <utility>

namespace xpon::simulator {

/// When the network last refused the sessions of a service, which is a fault.
class PppoeBlocks {
public:
    void follow(const ActiveFaults& faults, PlantTime now);

    /// The last time, of the service (from 1) of a physical ONT; null when there was none.
    [[nodiscard]] const Stretch* find(const OntPosition& ont, unsigned service) const;

private:
    std::map<std::pair<OntPosition, unsigned>, Stretch> blocks_;
};

} // namespace xpon::simulator
