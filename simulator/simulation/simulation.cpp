#include "simulator/simulation/simulation.hpp"

#include "simulator/files/device_files.hpp"
#include "simulator/reports/board_report.hpp"
#include "simulator/simulation/commit_summary.hpp"
#include "xpon/peer_side/olt_root.hpp"
#include "xpon/peer_side/operations.hpp"

#include <algorithm>
#include <iterator>
#include <system_error>
#include <utility>

#include <fmt/format.h>

namespace xpon::simulator {

Simulation::Simulation(const Options& options)
    : events_(below_olt_root("/var/log/events.log")), clock_(options.uptime, options.clock_rate),
      network_(options.parameters(), follower_.configuration()), firmware_(make_firmware(options)),
      boot_time_(options.boot_time), asked_rate_(options.clock_rate) {
    if (!take_up(options)) {
        network_.advance(options.uptime);
        chronicle_.restart(network_);
        tell(fmt::format("OLT started, plant {} of seed {}", options.plant->name, options.seed));
        write_device_facts(present_facts());
    }
    for (const auto& complaint : firmware_.complaints()) {
        tell(complaint);
    }
    keep_state();
}

/// The process that left it was no more than the OLT's simulator: the OLT itself has gone on.
bool Simulation::take_up(const Options& options) {
    std::string complaint;
    const auto kept = take_up_state(network_, schedule_, complaint);
    if (!kept) {
        if (!complaint.empty()) {
            network_ = AccessNetwork(options.parameters(), follower_.configuration());
            schedule_.clear();
            chronicle_.restart(network_);
            tell(complaint);
        }
        return false;
    }
    clock_ = PlantClock(kept->present(), kept->asked_rate == options.clock_rate ? kept->rate : options.clock_rate);
    chronicle_.restart(network_);
    tell(fmt::format("the simulation of plant {} goes on {:.1f} s later", options.plant->name,
                     seconds_of(clock_.now() - kept->now)));
    return true;
}

Firmware Simulation::make_firmware(const Options& options) const {
    const auto& board = options.plant->board;
    const auto facts = read_device_facts();
    const bool ran_before = facts && facts->factory.serial_number == std::string_view(board.serial_number);
    return {{.board = &board,
             .write_time = options.firmware_write_time,
             .is_spoilt = [this](unsigned slot) { return is_slot_spoilt(plant(), slot); }},
            ran_before ? std::optional<unsigned>(facts->running_slot) : std::nullopt};
}

void Simulation::advance() {
    if (is_advancing_) {
        // An action of the schedule: the plant is at its time, not at the present.
        return;
    }
    const auto faults_before = plant().faults().all().size();
    advance_network();
    if (plant().faults().all().size() != faults_before) {
        write_facts();
    }
    follow_commits();
}

void Simulation::advance_network() {
    struct Advancing {
        explicit Advancing(bool& place) : flag(place) {
            flag = true;
        }
        ~Advancing() {
            flag = false;
        }
        bool& flag;
    };
    const Advancing advancing(is_advancing_);
    const auto now = clock_.now();
    while (run_scheduled_ && !schedule_.empty() && schedule_.begin()->first <= now) {
        auto next = schedule_.extract(schedule_.begin());
        pass_until(next.key());
        run_scheduled_(next.mapped());
        keep_state();
    }
    pass_until(now);
    chronicle_.look_at_subscribers(network_);
    tell_events();
}

/// From one change of state to the next, so that none is missed.
void Simulation::pass_until(PlantTime time) {
    chronicle_.look(network_); // what happened has changed what is next
    for (bool has_come = false; !has_come;) {
        const auto next = std::min({chronicle_.next_due(plant()), plant().faults().next_end(), time});
        network_.advance(next);
        chronicle_.look(network_);
        has_come = next >= time;
    }
}

bool Simulation::runs(ipc::Address peer) const {
    const auto is_down = [this](ipc::Address daemon) {
        return plant().faults().has(FaultKind::peer_down,
                                    {.where = FaultTarget::Where::peer, .peer = peer_side::name_of(daemon)});
    };
    // Without the broker nobody reaches anybody.
    return !plant().is_booting() && !is_down(peer) && !is_down(peer_side::peers::ipc_broker);
}

void Simulation::follow_commits() {
    // Another commit may come while one is read; but somebody waits for the plant.
    static constexpr int most_rounds = 4;
    try {
        for (int round = 0; round < most_rounds && follow_last_commit(); ++round) {
        }
        if (plant_is_behind_) {
            network_.change_configuration(follower_.configuration(), onts_behind_);
            plant_is_behind_ = false;
            keep_state_later();
            note_other_models(std::exchange(onts_behind_, {}));
        }
        configuration_is_unreadable_ = false;
    } catch (const std::system_error& fault) {
        // The plant goes on as it is; the next use of it tries again.
        if (!std::exchange(configuration_is_unreadable_, true)) {
            tell(fmt::format("commits cannot be followed: {}", fault.what()));
        }
    }
}

/// False when every daemon that runs has followed it already.
bool Simulation::follow_last_commit() {
    const auto number = follower_.running_number();
    bool had_missed = false;
    for (const auto& [peer, name] : peer_side::peer_names) {
        auto followed = runs(peer) ? follower_.follow(peer, number) : std::nullopt;
        had_missed = had_missed || followed;
        if (followed) {
            plant_is_behind_ = plant_is_behind_ || followed->concerns_plant;
            onts_behind_.merge(followed->onts);
        }
        if (followed && peer == peer_side::peers::system_manager) {
            note_commits(followed->commits);
        }
    }
    return had_missed;
}

/// A model that is not the expected one works all the same.
void Simulation::note_other_models(const ChangedOnts& onts) {
    for (const auto index : onts) {
        const auto ont = plant().ont_configured_as(index);
        if (!ont || ont->point.state == ont_gone || ont->settings->expected_equipment_id.empty()) {
            continue;
        }
        const auto& found = ont->hardware->model->equipment_id;
        if (found != ont->settings->expected_equipment_id) {
            tell(fmt::format("{} is a {}, expected is {}", description_of(place_of_record(index)), found,
                             ont->settings->expected_equipment_id));
        }
    }
}

/// The system manager keeps the record for all daemons.
void Simulation::note_commits(const cfgdb::RunningCommits& commits) {
    for (const auto& commit : commits.commits) {
        tell(fmt::format("commit by {:#010x}: {}", commit.by.value, summary_of(commit.changes)));
    }
    if (!commits.is_complete) {
        tell("commits were missed: the running configuration was read anew");
    }
}

void Simulation::set_fault(Fault fault, PlantTime lasts) {
    advance();
    fault.until = lasts == PlantTime{} ? never : plant().now() + lasts;
    network_.happen(&Plant::set_fault, fault);
    tell(fmt::format("fault {} {} set", rule_of(fault.kind).name, to_text(fault.target)));
    write_facts();
}

bool Simulation::clear_fault(const FaultRule& rule, const FaultTarget& target) {
    advance();
    const bool was_set = network_.happen(&Plant::clear_fault, rule.kind, target);
    if (was_set) {
        tell(fmt::format("fault {} {} cleared", rule.name, to_text(target)));
        write_facts();
    }
    return was_set;
}

void Simulation::clear_all_faults() {
    advance();
    network_.happen(&Plant::clear_all_faults);
    tell("all faults cleared");
    write_facts();
}

void Simulation::switch_power(const std::vector<OntPosition>& onts, bool on) {
    advance();
    network_.happen(&Plant::switch_power, onts, on);
    tell(fmt::format("power {} at {} ONTs", on ? "on" : "off", onts.size()));
    keep_state();
}

void Simulation::plug_in(const PhysicalOnt& ont) {
    advance();
    network_.happen(&Plant::plug_in, ont);
    tell(fmt::format("ONT {}/{} plugged in", ont.position.port, ont.position.ont));
    keep_state();
}

void Simulation::change_subscribers(const Event& what, const std::function<void(Plant&)>& change) {
    advance();
    network_.happen(change);
    chronicle_.add(what);
    chronicle_.look(network_);
    chronicle_.look_at_subscribers_now(network_);
    tell_events();
    keep_state();
}

void Simulation::reboot() {
    advance();
    follower_.restart();
    firmware_.boot();
    network_.happen(&Plant::configure, follower_.configuration());
    network_.happen(&Plant::boot, boot_time_);
    write_facts();
}

void Simulation::restart_pon_ports(const std::function<bool(unsigned port)>& is_meant) {
    advance();
    network_.happen(&Plant::restart_pon_ports, is_meant);
    keep_state();
}

std::vector<std::uint16_t> Simulation::command_onts(OntCommand command,
                                                    const std::function<bool(std::uint16_t index)>& is_meant) {
    advance();
    auto told = network_.happen(&Plant::command_onts, command, is_meant);
    keep_state();
    return told;
}

void Simulation::select_firmware(std::uint32_t selector) {
    advance();
    firmware_.select(selector);
    write_facts();
}

void Simulation::start_firmware_update(const std::string& path) {
    advance();
    try {
        firmware_.start_update(path);
    } catch (const std::system_error&) {
        // A fault of the flash may have cost the slot what it held.
        write_facts();
        throw;
    }
    write_facts();
}

void Simulation::work() {
    if (const auto outcome = firmware_.write_on()) {
        tell(*outcome);
        write_facts();
    }
    if (facts_are_old_) {
        write_facts();
    }
    if (is_unkept_ && std::chrono::steady_clock::now() >= may_keep_at_) {
        keep_state();
    }
}

void Simulation::note(std::string_view text) {
    tell(text);
}

/// It, and what came of it, becomes known.
void Simulation::tell(std::string_view text) {
    chronicle_.add({.at = plant().now(), .kind = EventKind::olt, .target = "", .text = std::string(text)});
    chronicle_.look(network_);
    tell_events();
}

void Simulation::tell_events() {
    const auto events = chronicle_.take();
    if (events.empty()) {
        return;
    }
    std::vector<std::string> lines;
    std::ranges::transform(events, std::back_inserter(lines), to_line);
    events_.write(lines);
    for (const auto& listener : listeners_) {
        listener(events);
    }
}

void Simulation::set_rate(double rate) {
    advance();
    clock_.set_rate(rate);
    write_facts();
}

void Simulation::step(PlantTime by) {
    // What was committed before the step is in force for all of it.
    advance();
    clock_.step(by);
    advance();
    write_facts();
}

void Simulation::take_snapshot(const std::string& name) {
    advance();
    snapshots_.insert_or_assign(name, Snapshot{network_, schedule_});
}

bool Simulation::load_snapshot(const std::string& name) {
    const auto found = snapshots_.find(name);
    if (found == snapshots_.end()) {
        return false;
    }
    network_ = found->second.network;
    schedule_ = found->second.schedule;
    clock_ = PlantClock(plant().now(), clock_.rate());
    network_.happen(&Plant::configure, follower_.configuration());
    chronicle_.restart(network_);
    tell(fmt::format("snapshot {} loaded", name));
    write_facts();
    return true;
}

void Simulation::set_scheduled_runner(std::function<void(const std::string& command)> run) {
    run_scheduled_ = std::move(run);
    advance();
    write_facts();
}

void Simulation::schedule(PlantTime in, const std::string& command) {
    advance();
    schedule_.emplace(plant().now() + in, command);
    keep_state();
}

Device_facts Simulation::present_facts() const {
    return report_device_facts(plant(), firmware_.slots(), clock_.rate());
}

/// Commits come in hundreds a second, and each is in the database: who goes on without what the last ones did to the
/// plant has it done again.
void Simulation::keep_state_later() {
    static constexpr std::chrono::seconds delay{5};
    if (!std::exchange(is_unkept_, true)) {
        may_keep_at_ = std::chrono::steady_clock::now() + delay;
    }
}

void Simulation::keep_state() {
    is_unkept_ = true;
    if (is_advancing_) {
        may_keep_at_ = {}; // there may be more to come; it is kept when all of it has happened
        return;
    }
    try {
        KeptClock clock{.now = clock_.now(),
                        .written_at = std::chrono::system_clock::now(),
                        .rate = clock_.rate(),
                        .asked_rate = asked_rate_};
        xpon::simulator::keep_state(network_, schedule_, clock);
        is_unkept_ = false;
    } catch (const std::system_error&) { // NOLINT(bugprone-empty-catch)
        // A full disk must not stop the OLT: it is tried again until it succeeds.
        constexpr std::chrono::seconds pause{1};
        may_keep_at_ = std::chrono::steady_clock::now() + pause;
    }
}

void Simulation::write_facts() {
    keep_state();
    try {
        write_device_facts(present_facts());
        facts_are_old_ = false;
    } catch (const std::system_error&) {
        // A full disk must not stop the OLT: it is tried again until it succeeds.
        facts_are_old_ = true;
    }
}

} // namespace xpon::simulator
