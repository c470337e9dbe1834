#include "simulator/control/control_commands.hpp"

#include "simulator/control/command_fields.hpp"
#include "simulator/control/ont_truth.hpp"
#include "simulator/control/presence_commands.hpp"
#include "simulator/control/subscriber_commands.hpp"
#include "simulator/control/subscriber_truth.hpp"
#include "simulator/control/truth.hpp"
#include "xpon/core/json_tree.hpp"
#include "xpon/custom_layer/commands.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <ranges>

#include <fmt/format.h>

namespace xpon::simulator {
namespace {

constexpr double longest_step_s = 10.0 * 365 * 86400;
constexpr std::size_t most_scheduled = 10000;
constexpr std::size_t most_snapshots = 16; // of a few MB each

core::JsonTree new_object() {
    return core::JsonTree(cJSON_CreateObject());
}

PlantTime time_of(double seconds) {
    return PlantTime(static_cast<PlantTime::rep>(std::llround(seconds * 1000)));
}

const FaultRule& known_fault(const std::string& name) {
    const auto* const rule = find_fault(name);
    if (rule == nullptr) {
        throw CommandError(fmt::format("there is no fault '{}'; {{\"faults\": true}} lists them", name));
    }
    return *rule;
}

FaultTarget known_target(const FaultRule& rule, const std::string& text) {
    std::string complaint;
    const auto target = parse_target(rule, text, complaint);
    if (!target) {
        throw CommandError(complaint);
    }
    return *target;
}

/// A fault needs something that breaks. `plant` may have ONTs that its description does not know.
void check_existence(const Plant& plant, const FaultTarget& target) {
    const OntPosition ont{.port = target.port, .ont = target.ont};
    const bool is_of_ont = target.where == FaultTarget::Where::ont || target.where == FaultTarget::Where::service;
    if (is_of_ont && plant.has_ont(ont)) {
        return;
    }
    auto complaint = complaint_about(*plant.parameters().plant, target);
    if (complaint.empty() && is_of_ont) { // described, but left out by --onts
        complaint = fmt::format("there is no ONT {}/{}", ont.port, ont.ont);
    }
    if (!complaint.empty()) {
        throw CommandError(complaint);
    }
}

core::JsonTree set_fault(Simulation& simulation, const CommandFields& fields) {
    const auto& rule = known_fault(fields.text("fault"));
    const auto target = known_target(rule, fields.text("target"));
    check_existence(simulation.plant(), target);
    const auto lasts = fields.number("for_s", 0, longest_step_s).value_or(0);
    if (rule.value.empty() && fields.find("value") != nullptr) {
        throw CommandError(fmt::format("{} takes no value", rule.name));
    }
    const auto value = fields.number("value", rule.least_value, rule.most_value);
    if (!value && !rule.usual_value) {
        throw CommandError(fmt::format("{} needs a value: {}, from {} to {}", rule.name, rule.value, rule.least_value,
                                       rule.most_value));
    }
    simulation.set_fault(
        {.kind = rule.kind, .target = target, .value = value.value_or(rule.usual_value.value_or(0)), .until = never},
        time_of(lasts));
    return new_object();
}

core::JsonTree clear_fault(Simulation& simulation, const CommandFields& fields) {
    const auto name = fields.text("clear");
    if (name == "all") {
        simulation.clear_all_faults();
        return new_object();
    }
    const auto& rule = known_fault(name);
    const auto target = known_target(rule, fields.text("target"));
    if (!simulation.clear_fault(rule, target)) {
        throw CommandError(fmt::format("there is no {} {} to clear", rule.name, to_text(target)));
    }
    return new_object();
}

core::JsonTree step(Simulation& simulation, const CommandFields& fields) {
    simulation.step(time_of(fields.number("step_s", 0, longest_step_s).value_or(0)));
    return describe_summary(simulation);
}

core::JsonTree set_clock(Simulation& simulation, const CommandFields& fields) {
    const auto kind = fields.text("clock");
    const auto rate = fields.number("rate", 1, PlantClock::largest_rate);
    if (kind == "scaled" ? !rate : rate.has_value()) {
        throw CommandError(
            fmt::format("the scaled clock takes a rate from 1 to {}, and no other", PlantClock::largest_rate));
    }
    if (kind != "real" && kind != "stepped" && kind != "scaled") {
        throw CommandError(fmt::format("clock must be real, stepped or scaled, not '{}'", kind));
    }
    simulation.set_rate(kind == "real" ? 1 : kind == "stepped" ? 0 : *rate);
    return describe_summary(simulation);
}

core::JsonTree dump_state(Simulation& simulation, const CommandFields& fields) {
    const auto* const wanted = fields.find("state");
    const auto of = cJSON_IsTrue(wanted) != 0 ? "all" : fields.text("state");
    if (of == "all") {
        return describe_all(simulation);
    }
    if (of == "summary") {
        return describe_summary(simulation);
    }
    if (of == "subscribers") {
        return describe_subscribers(simulation);
    }
    if (of == "ont") {
        return describe_ont(simulation, known_ont(simulation, fields.text("ont")));
    }
    const auto port = fields.number("pon", 1, pon_ports);
    if (of != "pon" || !port) {
        throw CommandError("state must be all, summary, subscribers, ont with an \"ont\", or pon with a \"pon\"");
    }
    return describe_pon_port(simulation, static_cast<unsigned>(*port));
}

core::JsonTree list_faults(Simulation&, const CommandFields&) {
    return describe_fault_kinds();
}

/// The name that a member gives; it must have one.
std::string snapshot_name(const CommandFields& fields, const char* member) {
    static constexpr std::size_t longest = 64;
    auto name = fields.text(member);
    if (name.empty() || name.size() > longest) {
        throw CommandError(fmt::format("{} needs a name of at most {} bytes", member, longest));
    }
    return name;
}

core::JsonTree take_snapshot(Simulation& simulation, const CommandFields& fields) {
    const auto name = snapshot_name(fields, "snapshot");
    if (simulation.snapshots().size() >= most_snapshots && !simulation.snapshots().contains(name)) {
        throw CommandError(fmt::format("there are {} snapshots already; use one of their names", most_snapshots));
    }
    simulation.take_snapshot(name);
    return describe_summary(simulation);
}

core::JsonTree load_snapshot(Simulation& simulation, const CommandFields& fields) {
    const auto name = snapshot_name(fields, "load");
    if (!simulation.load_snapshot(name)) {
        throw CommandError(fmt::format("there is no snapshot '{}'", name));
    }
    return describe_summary(simulation);
}

core::JsonTree reboot(Simulation& simulation, const CommandFields& fields) {
    if (fields.text("reboot") != "now") {
        throw CommandError("reboot takes now");
    }
    simulation.reboot();
    simulation.note("reboot by a tester");
    return new_object();
}

core::JsonTree update_firmware(Simulation& simulation, const CommandFields& fields) {
    simulation.start_firmware_update(fields.text("firmware"));
    simulation.note("firmware update by a tester");
    return new_object();
}

core::JsonTree choose_boot_slot(Simulation& simulation, const CommandFields& fields) {
    const auto slot = fields.text("boot");
    if (slot != "current" && slot != "alternate") {
        throw CommandError(fmt::format("boot takes current or alternate, not '{}'", slot));
    }
    simulation.select_firmware(slot == "current" ? firmware_current : firmware_alternate);
    return describe_summary(simulation);
}

core::JsonTree run(Simulation& simulation, const cJSON* command);

core::JsonTree schedule(Simulation& simulation, const CommandFields& fields) {
    const auto* const command = fields.find("command");
    const auto in = fields.number("at_s", 0, longest_step_s);
    const auto is_one_of = [&](const char* key) { return cJSON_HasObjectItem(command, key) != 0; };
    if (cJSON_IsObject(command) == 0 || is_one_of("at_s") || is_one_of("load")) {
        throw CommandError("command must be an object that is no at_s or load itself");
    }
    if (simulation.scheduled() >= most_scheduled) {
        throw CommandError("too many commands are waiting for their time");
    }
    simulation.schedule(time_of(in.value_or(0)), core::print_line(command).get());
    return new_object();
}

struct CommandRow {
    const char* key; ///< the member that makes a command this one
    std::string_view members;
    core::JsonTree (*run)(Simulation&, const CommandFields&);
};

constexpr std::array commands{
    CommandRow{"fault", "fault target value for_s", set_fault},
    CommandRow{"clear", "clear target", clear_fault},
    CommandRow{"step_s", "step_s", step},
    CommandRow{"clock", "clock rate", set_clock},
    CommandRow{"at_s", "at_s command", schedule},
    CommandRow{"state", "state ont pon", dump_state},
    CommandRow{"reboot", "reboot", reboot},
    CommandRow{"firmware", "firmware", update_firmware},
    CommandRow{"boot", "boot", choose_boot_slot},
    CommandRow{"power", "power ont pon", switch_power},
    CommandRow{"add", "add model serial_number", add_ont},
    CommandRow{"swap", "swap model serial_number", swap_ont},
    CommandRow{"move", "move pon", move_ont},
    CommandRow{"lease", "lease service", change_leases},
    CommandRow{"session", "session service", change_session},
    CommandRow{"group", "group service address", change_groups},
    CommandRow{"traffic", "traffic service profile", change_traffic},
    CommandRow{"snapshot", "snapshot", take_snapshot},
    CommandRow{"load", "load", load_snapshot},
    CommandRow{"faults", "faults", list_faults},
};

core::JsonTree run(Simulation& simulation, const cJSON* command) {
    const auto row = std::ranges::find_if(
        commands, [&](const auto& candidate) { return cJSON_GetObjectItemCaseSensitive(command, candidate.key); });
    if (row == commands.end()) {
        throw CommandError(
            fmt::format("a command is an object with watch or one of {}",
                        fmt::join(commands | std::views::transform([](const auto& one) { return one.key; }), ", ")));
    }
    simulation.advance();
    return row->run(simulation, CommandFields(command, row->members));
}

core::JsonTree run_text(Simulation& simulation, std::string_view line, std::optional<EventFilter>& watch) {
    const core::JsonTree command(cJSON_ParseWithLength(line.data(), line.size()));
    if (cJSON_IsObject(command.get()) == 0) {
        throw CommandError("a command is one line with a JSON object");
    }
    core::JsonTree answer;
    if (cJSON_HasObjectItem(command.get(), "watch") != 0) { // the one command that concerns its sender alone
        watch = parse_filter(CommandFields(command.get(), "watch target"));
        answer = new_object();
    } else {
        answer = run(simulation, command.get());
    }
    cJSON_AddTrueToObject(answer.get(), "ok");
    return answer;
}

core::JsonTree refusal(const char* error) {
    auto answer = new_object();
    cJSON_AddFalseToObject(answer.get(), "ok");
    cJSON_AddStringToObject(answer.get(), "error", error);
    return answer;
}

} // namespace

std::string run_command(Simulation& simulation, std::string_view line, std::optional<EventFilter>& watch) {
    core::JsonTree answer;
    try {
        answer = run_text(simulation, line, watch);
    } catch (const std::exception& error) {
        answer = refusal(error.what());
    }
    return core::print_line(answer.get()).get();
}

} // namespace xpon::simulator
