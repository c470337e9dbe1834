#pragma once

#include "simulator/events/event.hpp"
#include "simulator/plant/plant.hpp"

#include <array>
#include <vector>

namespace xpon::simulator {

/// Notices when ports change their state, and which faults of the board's parts are there.
class PortWatch {
public:
    void restart(const Plant& plant);
    void look(const Plant& plant, std::vector<Event>& events);
    /// When the next port changes its state by itself.
    [[nodiscard]] static PlantTime next_due(const Plant& plant);

private:
    struct States {
        std::array<Pon_channel_state, pon_ports> pon{};
        std::array<bool, front_ports> front{};
        std::vector<Fault> faults; ///< those that are alarms of the board
    };
    static States states_of(const Plant& plant);

    States known_;
};

} // namespace xpon::simulator
