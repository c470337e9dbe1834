#include "simulator/events/port_watch.hpp"

#include "xpon/peer_side/operations.hpp"

#include <algorithm>
#include <iterator>
#include <utility>

#include <fmt/format.h>

namespace xpon::simulator {
namespace {

namespace peers = peer_side::peers;

void compare_faults(const Plant& plant, const std::vector<Fault>& some, const std::vector<Fault>& others,
                    std::string_view outcome, std::vector<Event>& events) {
    for (const auto& fault : some) {
        const auto is_same = [&](const Fault& other) {
            return other.kind == fault.kind && other.target == fault.target;
        };
        if (std::ranges::none_of(others, is_same)) {
            events.push_back({plant.now(), EventKind::alarm, to_text(fault.target),
                              fmt::format("{} {}", rule_of(fault.kind).name, outcome), peers::system_manager});
        }
    }
}

} // namespace

PortWatch::States PortWatch::states_of(const Plant& plant) {
    States states;
    for (unsigned port = 1; port <= pon_ports; ++port) {
        states.pon.at(port - 1) = plant.channel_state(port);
    }
    for (unsigned port = 1; port <= front_ports; ++port) {
        states.front.at(port - 1) = plant.front_link_is_up(port);
    }
    std::ranges::copy_if(plant.faults().all(), std::back_inserter(states.faults),
                         [](const Fault& fault) { return rule_of(fault.kind).is_board_alarm; });
    return states;
}

void PortWatch::restart(const Plant& plant) {
    known_ = states_of(plant);
}

void PortWatch::look(const Plant& plant, std::vector<Event>& events) {
    const auto before = std::exchange(known_, states_of(plant));
    for (unsigned port = 1; port <= pon_ports; ++port) {
        if (const auto state = known_.pon.at(port - 1); state != before.pon.at(port - 1)) {
            events.push_back({plant.now(), EventKind::port, fmt::format("pon/{}", port), channel_state_to_str(state),
                              peers::pon_state_machine});
        }
    }
    for (unsigned port = 1; port <= front_ports; ++port) {
        if (const bool is_up = known_.front.at(port - 1); is_up != before.front.at(port - 1)) {
            events.push_back({plant.now(), EventKind::port, fmt::format("front/{}", port),
                              is_up ? "link up" : "link down", peers::system_manager});
        }
    }
    compare_faults(plant, known_.faults, before.faults, "raised", events);
    compare_faults(plant, before.faults, known_.faults, "cleared", events);
}

PlantTime PortWatch::next_due(const Plant& plant) {
    auto due = never;
    const auto consider = [&](PlantTime time) { due = time > plant.now() ? std::min(due, time) : due; };
    for (unsigned port = 1; port <= pon_ports; ++port) {
        consider(plant.pon_up_since(port));
    }
    for (unsigned port = 1; port <= front_ports; ++port) {
        consider(plant.front_link_since(port));
    }
    return due;
}

} // namespace xpon::simulator
