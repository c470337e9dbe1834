#pragma once

#include "simulator/subscribers/leases.hpp"

namespace xpon::simulator {

/// Which hosts the switch knows: those that it heard of late [802.1Q 8.8].
class MacLearning {
public:
    explicit MacLearning(const AccessNetwork& network) : plant_(network.plant()), leases_(network) {}

    [[nodiscard]] bool is_known(const SubscriberLine& line, unsigned host);

private:
    const Plant& plant_;
    Leases leases_;
};

} // namespace xpon::simulator
