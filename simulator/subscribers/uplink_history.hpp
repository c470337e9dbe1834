#pragma once

#include "simulator/plant/plant.hpp"

#include <cstdint>
#include <map>
#include <vector>

namespace xpon::simulator {

/// When which VLANs had a way into the network.
class UplinkHistory {
public:
    /// Something happened to the plant.
    void follow(const Plant& plant);

    /// When the VLAN had one, ascending, up to what is foreseen if nothing happens any more.
    [[nodiscard]] std::vector<Stretch> stretches_of(std::uint16_t vid) const;

private:
    struct Period {
        PlantTime since;
        VlanSet vlans;
    };
    std::vector<Period> periods_; ///< ascending; each lasts to the next one's begin
};

/// The stretches of VLANs for one report, each put together once.
class UplinkStretches {
public:
    explicit UplinkStretches(const UplinkHistory& history) : history_(history) {}

    const std::vector<Stretch>& of(std::uint16_t vid);

private:
    const UplinkHistory& history_;
    std::map<std::uint16_t, std::vector<Stretch>> known_;
};

} // namespace xpon::simulator
