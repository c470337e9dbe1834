#pragma once

#include "simulator/plant/plant_time.hpp"
#include "simulator/plant/random.hpp"
#include "xpon/custom_layer/onts.h"

#include <cstdint>
#include <optional>
#include <string>

namespace xpon::simulator {

/// Not on the PON at all: without power, without light, or not switched on yet.
inline constexpr Ont_state ont_gone{};

/// Everything that an ONT's way through its states depends on. It changes by events only, never with time.
struct OntSituation {
    bool has_power = true;
    bool is_cut = false; ///< its fibre, so that the signal is lost on the way
    std::uint16_t seen_port = 0;
    bool channel_is_up = true; ///< the PON port sends, now or once it has started
    PlantTime channel_since{}; ///< when its present run started
    PlantTime discovery_interval{10000};
    std::uint16_t discovery_waits = 0; ///< windows lost to other ONTs that answered in the same one

    std::optional<std::uint16_t> configured; ///< flat index of its configuration on the port where it is seen
    bool is_enabled = true;
    bool is_in_reach = true;
    bool has_onu_id = true; ///< one is left for it
    bool is_authentic = true;
    std::string credentials; ///< what authentication compares; a change repeats it
    bool omci_works = true;
    bool omci_is_lost = false; ///< noticed as soon as it is needed
    bool key_works = true;     ///< that of the encryption, which the OLT asks for after authentication
    bool is_stopped_rogue = false;
    unsigned services = 0;
    std::uint64_t provision = 0;

    bool operator==(const OntSituation&) const = default;

    template <class Archive>
    void archive(Archive& state) {
        state(has_power, is_cut, seen_port, channel_is_up, channel_since, discovery_interval, discovery_waits,
              configured, is_enabled, is_in_reach, has_onu_id, is_authentic, credentials, omci_works, omci_is_lost,
              key_works, is_stopped_rogue, services, provision);
    }
};

/// A point of an ONT's way.
struct OntPoint {
    Ont_state state = ont_gone;
    PlantTime since{};
    bool from_power_on = false; ///< of INITIAL: the ONT starts up first
};

/// Random times that an ONT takes; the same in every walk of the ONT.
class OntPace {
public:
    OntPace(const Random& random, std::uint64_t port, std::uint64_t ont) : random_(random), port_(port), ont_(ont) {}

    [[nodiscard]] PlantTime between(PlantTime least, PlantTime most, Purpose purpose, Ont_state state) const;

private:
    Random random_;
    std::uint64_t port_;
    std::uint64_t ont_;
};

/// Where an ONT that was at `from` is at `now`, its situation being the same all the time. Before `from` it is gone.
OntPoint walk(OntPoint from, const OntSituation& situation, const OntPace& pace, PlantTime now);

/// Where an ONT that was at `from` comes to stay, its situation being the same all the time; empty when it never does.
std::optional<OntPoint> end_of_walk(const OntPoint& from, const OntSituation& situation, const OntPace& pace);

/// When the state of an ONT that is at `point` ends, its situation being the same all the time; `never` if it does not.
PlantTime end_of(const OntPoint& point, const OntSituation& situation, const OntPace& pace);

/// Where an ONT goes on from when its situation changes at `now`, being at `at`.
OntPoint react(const OntPoint& at, const OntSituation& before, const OntSituation& after, PlantTime now);

/// What the OLT tells an ONT to do.
enum class OntCommand : std::uint8_t {
    reconfigure, ///< it is provisioned over OMCI anew
    reset,       ///< it forgets its local data and restarts
    reboot,
};

/// Where an ONT goes on from that is told so at `now`, being at `at`, which is a state that is listed.
OntPoint obey(const OntPoint& at, const OntSituation& situation, OntCommand command, PlantTime now);

/// Whether the OLT lists an ONT of this state among the activated ones.
constexpr bool is_listed(Ont_state state) {
    return state >= ont_ranging;
}
/// Whether it holds an ONU-ID.
constexpr bool holds_onu_id(Ont_state state) {
    return state >= ont_ranging && state <= ont_popup;
}
/// Whether it stays activated when it comes to this state from OPERATIONAL, or from a state that does.
constexpr bool keeps_activation(Ont_state state) {
    return state >= ont_authentication && state <= ont_config_failed;
}
/// Whether it is on its way into service.
constexpr bool is_activating(Ont_state state) {
    return state >= ont_initial && state <= ont_configuring && state != ont_serial_number;
}

} // namespace xpon::simulator
