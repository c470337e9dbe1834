#pragma once

#include "simulator/events/chronicle.hpp"
#include "simulator/files/event_log.hpp"
#include "simulator/firmware/firmware.hpp"
#include "simulator/plant/plant_clock.hpp"
#include "simulator/simulation/configuration_follower.hpp"
#include "simulator/simulation/kept_state.hpp"
#include "simulator/subscribers/access_network.hpp"
#include "xpon/peer_side/device_facts.h"

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace xpon::simulator {

/// What is asked for.
struct Options {
    std::shared_ptr<const PlantDescription> plant;
    PlantSize size;
    std::uint64_t seed = 1;
    PlantTime uptime{};                              ///< of the OLT when it is simulated for the first time
    double clock_rate = 1;                           ///< 0: the clock is stepped
    PlantTime boot_time{20000};                      ///< how long a restart of the OLT takes
    std::chrono::milliseconds firmware_write_time{}; ///< how long an update blocks its caller, in real time
    bool applies_hostname = false;                   ///< the configured host name becomes that of the UTS namespace

    [[nodiscard]] PlantParameters parameters() const {
        return {.plant = plant.get(), .size = size, .seed = seed, .past = uptime};
    }
};

/// One running simulation: the plant with its subscribers, its time, its configuration, and what is to happen to it.
class Simulation {
public:
    struct Snapshot {
        AccessNetwork network;
        Schedule schedule;
    };

    /// Goes on with what another one of the same plant has left, or begins.
    explicit Simulation(const Options& options);
    Simulation(const Simulation&) = delete;
    Simulation& operator=(const Simulation&) = delete;

    /// Brings the plant to the present, with the configuration of the last commit in force. Every use of the plant, and
    /// of its clock, begins with it.
    void advance();
    [[nodiscard]] const AccessNetwork& network() const {
        return network_;
    }
    [[nodiscard]] const Plant& plant() const {
        return network_.plant();
    }
    [[nodiscard]] const PlantClock& clock() const {
        return clock_;
    }

    /// Whether a daemon of the OLT runs: the OLT does, and no fault keeps it down.
    [[nodiscard]] bool runs(ipc::Address peer) const;

    void set_fault(Fault fault, PlantTime lasts);
    bool clear_fault(const FaultRule& rule, const FaultTarget& target);
    void clear_all_faults();

    void switch_power(const std::vector<OntPosition>& onts, bool on);
    void plug_in(const PhysicalOnt& ont);
    /// A tester has subscribers do something, now, which goes into the events as `what`.
    void change_subscribers(const Event& what, const std::function<void(Plant&)>& change);

    [[nodiscard]] const Firmware& firmware() const {
        return firmware_;
    }

    // What the OLT is told to do. Refusals are std::system_error with the errno value for who asked.

    /// Into the next-boot slot and the saved configuration. What testers injected or planned stays.
    void reboot();
    void restart_pon_ports(const std::function<bool(unsigned port)>& is_meant);
    /// Indices of the configurations of the ONTs that were told.
    std::vector<std::uint16_t> command_onts(OntCommand command,
                                            const std::function<bool(std::uint16_t index)>& is_meant);
    void select_firmware(std::uint32_t selector);
    void start_firmware_update(const std::string& path);

    /// What the OLT does by itself: a firmware update goes on, files that are to be written are. To be called often.
    void work();

    /// Writes a line to the OLT's events.
    void note(std::string_view text);
    /// `listener` is told of all events from now on, those of a moment together.
    void on_events(std::function<void(std::span<const Event>)> listener) {
        listeners_.push_back(std::move(listener));
    }

    void set_rate(double rate);
    void step(PlantTime by);

    /// Keeps the plant, its subscribers, its time and what is scheduled under a name until the simulator ends. One that
    /// is kept under the name already is replaced.
    void take_snapshot(const std::string& name);
    /// Goes back to a snapshot; not within an action of the schedule. The configuration of now takes effect as if it
    /// were committed then, and the clock keeps its rate. False when there is no snapshot of that name.
    bool load_snapshot(const std::string& name);
    [[nodiscard]] const std::map<std::string, Snapshot>& snapshots() const {
        return snapshots_;
    }

    /// Has a command carried out when the plant's time has moved on by `in`.
    void schedule(PlantTime in, const std::string& command);
    /// Who carries them out; until there is somebody they wait, and a simulation that goes on stays where the other one
    /// left off.
    void set_scheduled_runner(std::function<void(const std::string& command)> run);
    [[nodiscard]] std::size_t scheduled() const {
        return schedule_.size();
    }

private:
    void advance_network();
    void follow_commits();
    bool follow_last_commit();
    void note_other_models(const ChangedOnts& onts);
    void note_commits(const cfgdb::RunningCommits& commits);
    void pass_until(PlantTime time);
    void tell(std::string_view text);
    void tell_events();
    [[nodiscard]] Firmware make_firmware(const Options& options) const;
    [[nodiscard]] Device_facts present_facts() const;
    bool take_up(const Options& options);
    void write_facts();
    void keep_state_later();
    void keep_state();

    EventLog events_;
    Chronicle chronicle_;
    std::vector<std::function<void(std::span<const Event>)>> listeners_;
    ConfigurationFollower follower_;
    PlantClock clock_;
    AccessNetwork network_;
    Firmware firmware_;
    PlantTime boot_time_;
    double asked_rate_;
    Schedule schedule_;
    std::function<void(const std::string& command)> run_scheduled_;
    std::map<std::string, Snapshot> snapshots_;
    bool is_advancing_ = false;
    bool facts_are_old_ = false;
    bool is_unkept_ = false; ///< something happened since the state was kept
    std::chrono::steady_clock::time_point may_keep_at_{};
    bool plant_is_behind_ = false; ///< of what the follower has read,
    ChangedOnts onts_behind_;      ///< with these ONTs
    bool configuration_is_unreadable_ = false;
};

} // namespace xpon::simulator
