#pragma once

#include "simulator/plant/plant_time.hpp"
#include "xpon/ipc/address.hpp"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace xpon::simulator {

enum class EventKind : std::uint8_t { olt, port, ont, alarm, session, group };

/// By kind.
inline constexpr std::array<std::string_view, 6> event_kind_names{"olt", "port", "ont", "alarm", "session", "group"};

constexpr std::string_view name_of(EventKind kind) {
    return event_kind_names.at(static_cast<std::size_t>(kind));
}

/// A change of state of something in the plant, or of what somebody did to it.
struct Event {
    PlantTime at; ///< of the plant
    EventKind kind;
    std::string target; ///< "3/17", "3/17/1" for a service, "pon/3", "front/2", a number, or empty
    std::string text;
    std::optional<ipc::Address> by{}; ///< the daemon of the OLT that notices; empty when none does
};

/// "263520.125 ont 3/17 RANGING": without the wall clock.
std::string to_line(const Event& event);
/// Whether the event is about a target, or about something that belongs to it: a service to its ONT, an ONT to its port
/// "pon/3". Every event is about "".
bool is_about(const Event& event, std::string_view target);

} // namespace xpon::simulator
