#pragma once

#include "simulator/plant/active_faults.hpp"
#include "simulator/plant/ont_layout.hpp"
#include "simulator/plant/plant_time.hpp"

#include <map>
#include <optional>
#include <utility>
#include <vector>

namespace xpon::simulator {

/// When the network refused the sessions of a service, which is a fault, or ended one, which takes no time.
class PppoeBlocks {
public:
    void follow(const ActiveFaults& faults, PlantTime now);
    /// The session of a service is ended, if it is not refused anyway.
    void end_session(const OntPosition& ont, unsigned service, PlantTime now);

    /// Of the service (from 1) of a physical ONT, ascending.
    [[nodiscard]] const std::vector<Stretch>& of(const OntPosition& ont, unsigned service) const;

    /// When there are more of one service than are to be kept: until when they may be forgotten.
    [[nodiscard]] std::optional<PlantTime> end_of_oldest_half() const;
    void forget_before(PlantTime time);

    template <class Archive>
    void archive(Archive& state) {
        state(blocks_);
    }

private:
    std::map<std::pair<OntPosition, unsigned>, std::vector<Stretch>> blocks_;
};

} // namespace xpon::simulator
