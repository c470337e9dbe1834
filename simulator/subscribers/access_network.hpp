#pragma once

#include "simulator/plant/plant.hpp"
#include "simulator/subscribers/service_history.hpp"

#include <cstddef>
#include <functional>
#include <type_traits>
#include <utility>
#include <vector>

namespace xpon::simulator {

/// The plant, and what the sessions of its subscribers remember of its past; all else about them follows from the
/// present. A copy is a whole one, and goes its own way.
class AccessNetwork {
public:
    /// Starts at time 0, with the configuration in force.
    AccessNetwork(const PlantParameters& parameters, RunningConfiguration configuration);

    [[nodiscard]] const Plant& plant() const {
        return plant_;
    }
    [[nodiscard]] const ServiceHistory& services() const {
        return services_;
    }

    /// Lets time pass up to `now`; never back.
    void advance(PlantTime now);

    /// Places of ONTs that something may have happened to since the last call.
    std::vector<std::size_t> take_touched() {
        return plant_.take_touched_onts();
    }

    /// Something happens to the plant now: `event` is one of its members, or takes it first. Gives what that gives.
    template <class Event, class... Arguments>
    auto happen(const Event& event, Arguments&&... arguments) {
        if constexpr (std::is_void_v<std::invoke_result_t<Event, Plant&, Arguments...>>) {
            std::invoke(event, plant_, std::forward<Arguments>(arguments)...);
            remember();
        } else {
            auto outcome = std::invoke(event, plant_, std::forward<Arguments>(arguments)...);
            remember();
            return outcome;
        }
    }

    /// Plant::change_configuration happens, at the cost of what it reaches.
    void change_configuration(const RunningConfiguration& configuration, const ChangedOnts& onts);

    /// What is kept of it, and read into one with the same parameters and the present configuration.
    template <class Archive>
    void archive(Archive& state) {
        state(plant_, services_);
        if constexpr (Archive::reads) {
            remember();
        }
    }

private:
    void remember();

    Plant plant_;
    ServiceHistory services_;
};

} // namespace xpon::simulator
