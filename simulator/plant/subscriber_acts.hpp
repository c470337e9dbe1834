#pragma once

#include "simulator/plant/multicast.hpp"
#include "simulator/plant/ont_layout.hpp"
#include "simulator/plant/plant_time.hpp"
#include "simulator/plant/service_usage.hpp"

#include <map>
#include <optional>
#include <utility>
#include <vector>

namespace xpon::simulator {

/// The hosts of a service renew their leases, or give them up and ask for others.
struct LeaseAct {
    PlantTime at;
    bool drops;
};

/// What testers had the subscribers of a service do, each list ascending.
struct ServiceActs {
    std::vector<LeaseAct> leases;
    std::vector<GroupChoice> groups;
    TrafficProfile profile = TrafficProfile::usual; ///< now

    template <class Archive>
    void archive(Archive& state) {
        state(leases, groups, profile);
    }
};

/// What testers had the subscribers of the plant do, other than of their own accord. It belongs to the subscribers:
/// also when their ONT is replaced.
class SubscriberActs {
public:
    /// Of a service (from 1) of a physical ONT.
    [[nodiscard]] const ServiceActs& of(const OntPosition& ont, unsigned service) const;
    /// The same, to add to.
    [[nodiscard]] ServiceActs& at(const OntPosition& ont, unsigned service) {
        return acts_[{ont, service}];
    }
    /// How the services of an ONT are used now.
    [[nodiscard]] OntUsage usage_of(const OntPosition& ont) const;

    /// When there are more of one service than are to be kept: until when they may be forgotten.
    [[nodiscard]] std::optional<PlantTime> end_of_oldest_half() const;
    void forget_before(PlantTime time);

    template <class Archive>
    void archive(Archive& state) {
        state(acts_);
    }

private:
    std::map<std::pair<OntPosition, unsigned>, ServiceActs> acts_;
};

} // namespace xpon::simulator
