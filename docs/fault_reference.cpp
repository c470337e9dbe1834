#include "simulator/events/ont_alarms.hpp"
#include "simulator/plant/fault_kinds.hpp"

#include <iostream>
#include <string>

#include <fmt/format.h>

// Prints faults.md from the tables that the simulator works with.

namespace {

using namespace xpon::simulator;

std::string value_of(const FaultRule& rule) {
    if (rule.value.empty()) {
        return "";
    }
    const auto usual = rule.usual_value ? fmt::format("; {} without it", *rule.usual_value) : "";
    return fmt::format("{}, {} to {}{}", rule.value, rule.least_value, rule.most_value, usual);
}

} // namespace

int main() {
    std::cout
        << "# Faults and alarms of the simulated OLT\n\n"
           "Made by `docs/fault_reference.cpp` from the simulator's tables; do not edit.\n\n"
           "`olt_sim fault KIND [TARGET] [value N] [for SECONDS]` sets a fault, `olt_sim clear KIND [TARGET]` clears "
           "it. A fault\nof an ONT or a module that does not exist is refused.\n\n"
           "| Fault | Target | Value | What it does | What shows it |\n|---|---|---|---|---|\n";
    for (const auto& rule : fault_rules()) {
        std::cout << fmt::format("| `{}` | {} | {} | {} | {} |\n", rule.name, expected_target(rule), value_of(rule),
                                 rule.effect, rule.shown);
    }
    std::cout << "\n## Alarms of ONTs\n\nAs G.984.3 names them; `alarm` events tell when one is raised or cleared.\n\n"
                 "| Alarm | Meaning |\n|---|---|\n";
    for (const auto& alarm : ont_alarms()) {
        std::cout << fmt::format("| {} | {} |\n", alarm.name, alarm.meaning);
    }
    std::cout << "\nFaults of the board and its modules are alarms themselves:";
    const char* separator = " ";
    for (const auto& rule : fault_rules()) {
        if (rule.is_board_alarm) {
            std::cout << separator << '`' << rule.name << '`';
            separator = ", ";
        }
    }
    std::cout << ".\n";
}
