#pragma once

#include "simulator/events/event.hpp"
#include "simulator/plant/plant.hpp"

#include <cstddef>
#include <cstdint>
#include <set>
#include <utility>
#include <vector>

namespace xpon::simulator {

/// Notices when ONTs change their state or their alarms. Looks only at those that something happened to, and at those
/// whose state ends by itself.
class OntWatch {
public:
    /// Takes all ONTs as they are.
    void restart(const Plant& plant);
    /// `touched`: the places of those that something happened to. To be called at next_due() at the latest, else
    /// states in between are missed.
    void look(const Plant& plant, const std::vector<std::size_t>& touched, std::vector<Event>& events);
    /// When the next one changes its state by itself.
    [[nodiscard]] PlantTime next_due() const {
        return due_.empty() ? never : due_.begin()->first;
    }

private:
    struct Known {
        OntPoint point;
        PlantTime due = never;
        std::uint32_t alarms = 0;
    };

    void look_at(const Plant& plant, std::size_t place, std::vector<Event>& events);
    void take(const Plant& plant, const Plant::Ont& ont, std::size_t place);

    std::vector<Known> known_; ///< by place
    std::set<std::pair<PlantTime, std::size_t>> due_;
};

} // namespace xpon::simulator
