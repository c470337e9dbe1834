#pragma once

#include "simulator/plant/active_faults.hpp"
#include "simulator/plant/ont_layout.hpp"
#include "simulator/plant/plant_time.hpp"

#include <map>
#include <utility>
#include <vector>

namespace xpon::simulator {

/// When the network refused the sessions of a service, which is a fault.
class PppoeBlocks {
public:
    void follow(const ActiveFaults& faults, PlantTime now);

    /// Of the service (from 1) of a physical ONT, ascending.
    [[nodiscard]] const std::vector<Stretch>& of(const OntPosition& ont, unsigned service) const;

    template <class Archive>
    void archive(Archive& state) {
        state(blocks_);
    }

private:
    std::map<std::pair<OntPosition, unsigned>, std::vector<Stretch>> blocks_;
};

} // namespace xpon::simulator
