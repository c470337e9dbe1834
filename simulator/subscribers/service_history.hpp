#pragma once

#include "simulator/plant/plant_time.hpp"
#include "simulator/plant/running_configuration.hpp"

#include <array>
#include <cstdint>
#include <optional>

namespace xpon::simulator {

/// Since when the services of configured ONTs are as they are. What subscribers got before, they have lost: an ONT
/// that is deleted and configured anew, or whose service moves to another VLAN, begins without leases and groups.
class ServiceHistory {
public:
    using ConfiguredOnts = OntTable<OntSettings>;

    /// These ONTs are configured from now on.
    void follow(const ConfiguredOnts& onts, PlantTime now);
    /// The same, when they differ in these from those of before at most.
    void follow(const ConfiguredOnts& onts, const ChangedOnts& changed, PlantTime now);

    /// `index` is an ONT's flat one, `service` counts from 1. `never` for a service that there is not.
    [[nodiscard]] PlantTime since(std::uint16_t index, unsigned service) const;

    template <class Archive>
    void archive(Archive& state) {
        state(onts_);
    }

private:
    /// What a service is to its subscribers.
    struct Form {
        explicit Form(const ServiceSettings& service);
        bool operator==(const Form&) const = default;

        cfgdb::ProfileOntCrossConnect::ServiceType type;
        cfgdb::ProfileOntCrossConnect::Termination termination;
        std::uint16_t uni_vid, s_vid, c_vid, multicast_vid;
        bool dhcp_agent, pppoe_agent;
        std::uint32_t static_ip;
    };
    struct KnownService {
        std::optional<Form> form;
        PlantTime since = never;
    };
    struct KnownOnt {
        std::uint64_t serial = 0;
        std::array<KnownService, max_services> services;
    };

    /// `ont`: null when it is not configured.
    void follow(std::uint16_t index, const OntSettings* ont, PlantTime now);

    OntTable<KnownOnt> onts_;
};

} // namespace xpon::simulator
