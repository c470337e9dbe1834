#pragma once

#include "simulator/control/command_fields.hpp"
#include "simulator/events/event.hpp"

#include <bitset>
#include <string>

namespace xpon::simulator {

/// The events that a client of the control socket wants to be told.
struct EventFilter {
    std::bitset<event_kind_names.size()> kinds;
    std::string target; ///< and what belongs to it; empty: all

    [[nodiscard]] bool lets_through(const Event& event) const {
        return kinds[static_cast<std::size_t>(event.kind)] && is_about(event, target);
    }
};

/// {"watch": "all" | "KIND,KIND...", "target": TEXT}. Throws CommandError.
EventFilter parse_filter(const CommandFields& fields);

/// The event as a line of JSON, with the time of now.
std::string to_json_line(const Event& event);

} // namespace xpon::simulator
