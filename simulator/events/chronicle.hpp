#pragma once

#include "simulator/events/ont_watch.hpp"
#include "simulator/events/port_watch.hpp"
#include "simulator/events/subscriber_watch.hpp"

#include <utility>
#include <vector>

namespace xpon::simulator {

/// Puts together what happens in the plant, event by event.
class Chronicle {
public:
    /// Takes the plant as it is.
    void restart(AccessNetwork& network);
    /// To be called when something happened, and at next_due() at the latest.
    void look(AccessNetwork& network);
    [[nodiscard]] PlantTime next_due(const Plant& plant) const;
    /// Leases, sessions and groups; when the network has come to the present.
    void look_at_subscribers(const AccessNetwork& network);
    /// The same, however short ago the last look was.
    void look_at_subscribers_now(const AccessNetwork& network) {
        subscribers_.look(network, events_);
    }
    void add(Event event) {
        events_.push_back(std::move(event));
    }
    /// What happened since the last call, ascending by time.
    std::vector<Event> take();

private:
    OntWatch onts_;
    PortWatch ports_;
    SubscriberWatch subscribers_;
    std::vector<Event> events_;
};

} // namespace xpon::simulator
