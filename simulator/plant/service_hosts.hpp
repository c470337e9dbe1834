#pragma once

#include "simulator/plant/ont_population.hpp"
#include "simulator/plant/plant_time.hpp"
#include "simulator/plant/running_configuration.hpp"

#include <cstdint>

namespace xpon::simulator {

/// The hosts of the subscribers behind one service of a physical ONT. They count from 0. Who they are follows from the
/// ONT itself; `settings` only say how many of them may talk.
class ServiceHosts {
public:
    ServiceHosts(const PlantParameters& plant, const PhysicalOnt& ont, const OntSettings& settings,
                 const ServiceSettings& service);

    /// As many as may talk.
    [[nodiscard]] unsigned count() const {
        return count_;
    }
    /// A number that tells the hosts of an ONT apart, below 256.
    [[nodiscard]] std::uint8_t number(unsigned host) const;

    /// In [least, most), always the same for a host.
    [[nodiscard]] PlantTime time_between(PlantTime least, PlantTime most, Purpose purpose, unsigned host) const;
    /// In [0, 1), always the same for a host.
    [[nodiscard]] double share(Purpose purpose, unsigned host, unsigned which = 0) const;

private:
    Random random_;
    OntPosition home_;
    unsigned service_;
    unsigned count_;
};

} // namespace xpon::simulator
