#pragma once

#include "simulator/plant/active_faults.hpp"
#include "simulator/plant/ont_life.hpp"
#include "simulator/plant/ont_meter.hpp"
#include "simulator/plant/ont_population.hpp"
#include "simulator/plant/running_configuration.hpp"
#include "simulator/subscribers/subscriber_history.hpp"
#include "xpon/custom_layer/pon_ports.h"

#include <array>
#include <functional>
#include <optional>
#include <span>
#include <vector>

namespace xpon::simulator {

/// What is true of the simulated OLT and its ONTs. Knows nothing of who asks. Its state follows from its parameters,
/// from the configurations and faults that it was given and when, and from the present time, and from nothing else;
/// between such events it is worked out when it is asked for.
class Plant {
public:
    /// An ONT now.
    struct Ont {
        const PhysicalOnt* hardware;
        const OntSituation* situation;
        const OntSettings* settings; ///< of the configuration on the port where it is seen; null without
        OntPoint point;
        std::optional<Stretch> last_service; ///< the last one that has ended since the OLT's start
        bool has_local_data;                 ///< what its user set on the ONT itself
        const OntMeter* meter;
        const LineConditions* line;
    };

    /// Starts at time 0, with the configuration in force.
    Plant(const PlantParameters& parameters, RunningConfiguration configuration);

    /// Lets time pass up to `now`; never back.
    void advance(PlantTime now);
    [[nodiscard]] PlantTime now() const {
        return now_;
    }

    /// A committed configuration takes effect.
    void configure(RunningConfiguration configuration);
    void set_fault(const Fault& fault);
    /// False when there is no such fault.
    bool clear_fault(FaultKind kind, const FaultTarget& target);
    void clear_all_faults();

    /// The OLT restarts: for as long as `takes` it does nothing at all. Faults stay.
    void boot(PlantTime takes);
    /// PON ports that `is_meant`, asked with port numbers from 1, start again as after having been enabled.
    void restart_pon_ports(const std::function<bool(unsigned port)>& is_meant);
    /// Activated ONTs that `is_meant`, asked with flat indices of configurations, are told to do something. Returns the
    /// indices of those.
    std::vector<std::uint16_t> command_onts(OntCommand command,
                                            const std::function<bool(std::uint16_t index)>& is_meant);

    /// When the OLT last started.
    [[nodiscard]] PlantTime booted_at() const {
        return booted_at_;
    }
    /// Whether its restart is still going on.
    [[nodiscard]] bool is_booting() const {
        return now_ < boot_ends_;
    }

    [[nodiscard]] const PlantParameters& parameters() const {
        return parameters_;
    }
    [[nodiscard]] const Random& random() const {
        return random_;
    }
    [[nodiscard]] const RunningConfiguration& configuration() const {
        return configuration_;
    }
    [[nodiscard]] const ActiveFaults& faults() const {
        return faults_;
    }

    /// All physical ONTs, in the order in which they were made.
    [[nodiscard]] std::vector<Ont> onts() const;
    /// The ONT that is seen where the configuration with this flat index wants it; empty without one.
    [[nodiscard]] std::optional<Ont> ont_configured_as(std::uint16_t index) const;
    /// An OPERATIONAL ONT as its meter counts it.
    [[nodiscard]] MeteredOnt metered(const Ont& ont) const;
    /// dBm at the OLT.
    [[nodiscard]] double received_power_of(const Ont& ont) const;
    /// The ONU-ID that is left for a configured ONT by its flat index; empty when the port has none left.
    [[nodiscard]] std::optional<std::uint8_t> onu_id_of(std::uint16_t index) const;

    /// Ports count from 1.
    [[nodiscard]] Pon_channel_state channel_state(unsigned pon_port) const;
    [[nodiscard]] bool front_link_is_up(unsigned front_port) const {
        return front_link_since(front_port) <= now_;
    }
    /// When the link comes up, or came; `never` as long as nothing happens to it.
    [[nodiscard]] PlantTime front_link_since(unsigned front_port) const;
    [[nodiscard]] const SubscriberHistory& subscriber_history() const {
        return subscriber_history_;
    }
    /// The module in a port; null when the slot is empty.
    /// @{
    [[nodiscard]] const ModuleModel* pon_module(unsigned port) const;
    [[nodiscard]] const ModuleModel* front_module(unsigned port) const;
    /// @}
    /// Since when the module is in, or the port runs.
    /// @{
    [[nodiscard]] PlantTime pon_module_since(unsigned port) const {
        return pon_.at(port - 1).module_since;
    }
    [[nodiscard]] PlantTime front_module_since(unsigned port) const {
        return front_.at(port - 1).module_since;
    }
    /// @}

private:
    static constexpr PlantTime channel_start_time{3000};
    static constexpr PlantTime link_up_time{2000};

    /// How a port comes to run.
    struct PortRun {
        bool has_module = false;
        bool is_enabled = false;
        PlantTime module_since{};
        PlantTime up_since{}; ///< once enabled and with a module: when it works
        bool has_rogue = false;
        PlantTime rogue_since{};
    };
    struct TrackedOnt {
        PhysicalOnt hardware;
        OntSituation situation;
        OntPoint anchor; ///< where its way goes on from; may lie ahead
        std::optional<Stretch> last_service;
        bool has_local_data = true;
        OntMeter meter{};
        LineConditions line{};
    };

    /// Every event: what `mutate` changes takes effect now. `before` is the configuration until now, once `mutate` has
    /// run.
    void change(const RunningConfiguration& before, const std::function<void()>& mutate);
    void update_ports(const std::array<PonPortSettings, pon_ports>& before);
    void update_onts(const std::vector<OntPoint>& points, const RunningConfiguration& before);
    void update_meter(TrackedOnt& ont, const OntPoint& was, const OntPoint& is, const LineConditions& line,
                      const RunningConfiguration& before);
    /// The way of an ONT that is at `at` goes on from `point`.
    void redirect(TrackedOnt& ont, const OntPoint& at, const OntPoint& point) const;
    void share_discovery(const std::vector<bool>& starts);
    void index_configuration();
    void index_onts();

    [[nodiscard]] OntSituation situation_of(const TrackedOnt& ont) const;
    void add_configuration_to(OntSituation& situation, const TrackedOnt& ont) const;
    [[nodiscard]] OntPoint point_of(const TrackedOnt& ont) const;
    [[nodiscard]] Ont describe(const TrackedOnt& ont) const;
    [[nodiscard]] bool has_rogue(unsigned pon_port) const;
    [[nodiscard]] double attenuation_of(const OntPosition& ont) const;
    [[nodiscard]] LineConditions line_of(const OntPosition& ont, unsigned seen_port) const;

    PlantParameters parameters_;
    Random random_;
    PlantTime now_{};
    PlantTime booted_at_{};
    PlantTime boot_ends_{};
    RunningConfiguration configuration_;
    /// (PON port, serial) to flat index.
    std::map<std::pair<unsigned, std::uint64_t>, std::uint16_t> configured_;
    ActiveFaults faults_;
    std::array<PortRun, pon_ports> pon_{};
    std::array<PortRun, front_ports> front_{};
    std::vector<TrackedOnt> onts_;
    std::map<std::uint16_t, std::size_t> by_configuration_; ///< flat index to place in `onts_`
    SubscriberHistory subscriber_history_;
};

} // namespace xpon::simulator
