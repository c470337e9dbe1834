#pragma once

#include "simulator/plant/circumstances.hpp"
#include "simulator/plant/onts.hpp"
#include "simulator/plant/ports.hpp"
#include "simulator/plant/uplinks.hpp"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <ranges>
#include <vector>

namespace xpon::simulator {

/// What is true of the simulated OLT and its ONTs. Knows nothing of who asks. Its state follows from its parameters,
/// from the configurations and faults that it was given and when, and from the present time, and from nothing else;
/// between such events it is worked out when it is asked for.
class Plant {
public:
    using Ont = OntNow;

    /// Starts at time 0, with the configuration in force.
    Plant(const PlantParameters& parameters, RunningConfiguration configuration);

    /// Lets time pass up to `now`; never back.
    void advance(PlantTime now);
    [[nodiscard]] PlantTime now() const {
        return given_.now;
    }

    /// A committed configuration takes effect.
    void configure(RunningConfiguration configuration);
    /// The same for one that differs from that of before in these ONTs at most: costs what it reaches.
    void change_configuration(const RunningConfiguration& configuration, const ChangedOnts& onts);
    void set_fault(const Fault& fault);
    /// False when there is no such fault.
    bool clear_fault(FaultKind kind, const FaultTarget& target);
    void clear_all_faults();

    /// Power comes to the ONTs of these places, or goes from them.
    void switch_power(const std::vector<OntPosition>& onts, bool on);
    /// An ONT is plugged in, where none was or in the place of another one.
    void plug_in(const PhysicalOnt& ont);

    /// What is kept of the plant, and read into one with the same parameters and the present configuration.
    template <class Archive>
    void archive(Archive& state) {
        state(given_, ports_);
        onts_.archive(state, *given_.parameters.plant);
        if constexpr (Archive::reads) {
            follow({given_.configuration.pon, {}});
        }
    }

    /// All hosts of a service (from 1) renew their leases now, or give them up and ask for others.
    void change_leases(const OntPosition& ont, unsigned service, bool drop);
    /// The network ends the session of a service, which its client opens again.
    void end_session(const OntPosition& ont, unsigned service);
    /// The viewers of a service have these groups joined from now on; without: those that they like.
    void choose_groups(const OntPosition& ont, unsigned service, const std::optional<JoinedGroups>& held);
    /// A service is used like this from now on.
    void set_profile(const OntPosition& ont, unsigned service, TrafficProfile profile);

    /// The OLT restarts: for as long as `takes` it does nothing at all. Faults stay.
    void boot(PlantTime takes);
    /// PON ports that `is_meant`, asked with port numbers from 1, start again as after having been enabled.
    void restart_pon_ports(const std::function<bool(unsigned port)>& is_meant);
    /// Activated ONTs that `is_meant`, asked with flat indices of configurations, are told to do something. Returns the
    /// indices of those.
    std::vector<std::uint16_t> command_onts(OntCommand command,
                                            const std::function<bool(std::uint16_t index)>& is_meant) {
        return onts_.command(given_, command, is_meant);
    }

    /// When the OLT last started.
    [[nodiscard]] PlantTime booted_at() const {
        return given_.booted_at;
    }
    /// Whether its restart is still going on.
    [[nodiscard]] bool is_booting() const {
        return now() < given_.boot_ends;
    }

    [[nodiscard]] const PlantParameters& parameters() const {
        return given_.parameters;
    }
    [[nodiscard]] const Random& random() const {
        return given_.random;
    }
    [[nodiscard]] const RunningConfiguration& configuration() const {
        return given_.configuration;
    }
    [[nodiscard]] const ActiveFaults& faults() const {
        return given_.faults;
    }

    [[nodiscard]] bool has_ont(const OntPosition& position) const {
        return onts_.contains(position);
    }
    /// All physical ONTs, in the order in which they were made.
    [[nodiscard]] auto onts() const {
        return std::views::iota(std::size_t{0}, ont_count()) |
               std::views::transform([this](std::size_t place) { return ont_at(place); });
    }
    /// The ONT that is seen where the configuration with this flat index wants it; empty without one.
    [[nodiscard]] std::optional<Ont> ont_configured_as(std::uint16_t index) const {
        return onts_.configured_as(given_, index);
    }
    /// ONTs by their place in the order in which they were made, from 0; places do not change.
    /// @{
    [[nodiscard]] std::size_t ont_count() const {
        return onts_.count();
    }
    [[nodiscard]] Ont ont_at(std::size_t place) const {
        return onts_.at(given_, place);
    }
    /// When its state ends if nothing happens; `never` if it does not.
    [[nodiscard]] PlantTime ont_changes_at(std::size_t place) const {
        return onts_.changes_at(given_, place);
    }
    /// The places of those that something may have happened to since the last call.
    std::vector<std::size_t> take_touched_onts() {
        return onts_.take_touched();
    }
    /// @}
    /// An OPERATIONAL ONT as its meter counts it.
    [[nodiscard]] MeteredOnt metered(const Ont& ont) const;
    /// What the OLT has counted of an ONT since its activation; empty when it was never in service since.
    [[nodiscard]] std::optional<OntTally> counted(const Ont& ont) const;
    /// Bit times by which the ONT answers later than it should.
    [[nodiscard]] std::uint32_t drift_of(const Ont& ont) const {
        return given_.drift_of(ont.hardware->position);
    }
    /// dBm at the OLT.
    [[nodiscard]] double received_power_of(const Ont& ont) const;

    /// Ports count from 1.
    [[nodiscard]] Pon_channel_state channel_state(unsigned pon_port) const {
        return ports_.channel_state(given_, pon_port);
    }
    /// When a PON port that can work does so, or did.
    [[nodiscard]] PlantTime pon_up_since(unsigned port) const {
        return ports_.pon(port).up_since;
    }
    [[nodiscard]] bool front_link_is_up(unsigned front_port) const {
        return front_link_since(front_port) <= now();
    }
    /// When the link comes up, or came; `never` as long as nothing happens to it.
    [[nodiscard]] PlantTime front_link_since(unsigned front_port) const {
        return ports_.front_link_since(given_, front_port);
    }
    /// The uplinks that work now.
    [[nodiscard]] std::vector<Uplink> uplinks() const {
        return uplinks_at(given_, ports_, now());
    }
    [[nodiscard]] const UplinkHistory& uplink_history() const {
        return given_.uplinks;
    }
    [[nodiscard]] const PppoeBlocks& pppoe_blocks() const {
        return given_.pppoe_blocks;
    }
    [[nodiscard]] const SubscriberActs& subscriber_acts() const {
        return given_.acts;
    }
    /// The module in a port; null when the slot is empty.
    /// @{
    [[nodiscard]] const ModuleModel* pon_module(unsigned port) const {
        return Ports::pon_module(given_, port);
    }
    [[nodiscard]] const ModuleModel* front_module(unsigned port) const {
        return Ports::front_module(given_, port);
    }
    /// @}
    /// Since when the module is in.
    /// @{
    [[nodiscard]] PlantTime pon_module_since(unsigned port) const {
        return ports_.pon(port).module_since;
    }
    [[nodiscard]] PlantTime front_module_since(unsigned port) const {
        return ports_.front(port).module_since;
    }
    /// @}

private:
    /// What `mutate` changes, which is no configuration, takes effect now.
    void change(const std::function<void()>& mutate);
    void forget_old_past();
    void follow(const ReplacedSettings& replaced);

    Circumstances given_;
    Ports ports_;
    Onts onts_;
};

} // namespace xpon::simulator
