#pragma once

#include "simulator/plant/plant_time.hpp"
#include "simulator/plant/running_configuration.hpp"

#include <cstdint>
#include <map>
#include <optional>
#include <vector>

namespace xpon::simulator {

struct Circumstances;
class Ports;

/// When which VLANs had a way into the network.
class UplinkHistory {
public:
    /// Something happened to the ports.
    void follow(const Circumstances& given, const Ports& ports);

    /// When there are more changes than are to be kept: until when they may be forgotten.
    [[nodiscard]] std::optional<PlantTime> end_of_oldest_half() const;
    void forget_before(PlantTime time);

    /// When the VLAN had one, ascending, up to what is foreseen if nothing happens any more.
    [[nodiscard]] std::vector<Stretch> stretches_of(std::uint16_t vid) const;
    /// The same, of any VLAN.
    [[nodiscard]] std::vector<Stretch> stretches() const;

    template <class Archive>
    void archive(Archive& state) {
        state(periods_);
    }

private:
    template <class IsUp>
    [[nodiscard]] std::vector<Stretch> stretches_in_which(IsUp is_up) const;

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
