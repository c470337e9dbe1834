#pragma once

#include "simulator/events/event.hpp"
#include "simulator/subscribers/access_network.hpp"

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace xpon::simulator {

/// Notices leases, sessions and groups that come and go. It compares all of them with what it knew, which costs time:
/// how often it does follows from how many there may be. The times of what came are exact; what went did so with its
/// service, or when it was noticed.
class SubscriberWatch {
public:
    void restart(const AccessNetwork& network);
    void look(const AccessNetwork& network, std::vector<Event>& events);
    [[nodiscard]] PlantTime next_due() const {
        return next_;
    }

private:
    struct Known {
        PlantTime since;
        EventKind kind;
        ipc::Address by;
        std::string came;
        std::string went;
    };
    struct Table {
        /// By target and what tells it from others of the target.
        std::map<std::pair<std::string, std::string>, Known> entries;
        std::map<std::string, PlantTime> service_ended; ///< by target; the last time
    };

    static Table table_of(const AccessNetwork& network);
    void plan_next(const Plant& plant);

    Table known_;
    PlantTime next_{};
};

} // namespace xpon::simulator
