#pragma once

#include "simulator/plant/ont_layout.hpp"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace xpon::simulator {

enum class FaultKind : std::uint8_t {
    ont_los,
    ont_dying_gasp,
    ont_rogue,
    ont_attenuation,
    ont_omci,
    ont_omci_lost,
    ont_key,
    ont_drift,
    ont_moved,
    module_absent,
    module_excluded,
    module_no_diagnostics,
    module_hot,
    fan_failed,
    fan_absent,
    psu_failed,
    psu2_present,
    temperature,
    slot_corrupt,
    commit_refused,
    peer_down,
    peer_slow,
    peer_error,
    pppoe_blocked,
};

/// What a fault is injected into.
struct FaultTarget {
    enum class Where : std::uint8_t {
        plant,      ///< nothing in particular
        number,     ///< "2": a fan, a supply, a sensor or a slot
        ont,        ///< "3/17": PON port and number of a physical ONT
        pon_port,   ///< "3", or "pon/3" where a front port could be meant
        front_port, ///< "front/2"
        peer,       ///< "fsm-pon"
        service,    ///< "3/17/1": a service of a physical ONT
    };

    Where where = Where::plant;
    std::uint16_t port = 0;    ///< port or number
    std::uint16_t ont = 0;     ///< with `ont` and `service`
    std::string_view peer{};   ///< with `peer`; a name of the list of peers
    std::uint16_t service = 0; ///< with `service`

    bool operator==(const FaultTarget&) const = default;
};

inline FaultTarget ont_target(const OntPosition& ont) {
    return {.where = FaultTarget::Where::ont,
            .port = static_cast<std::uint16_t>(ont.port),
            .ont = static_cast<std::uint16_t>(ont.ont)};
}

inline FaultTarget port_target(FaultTarget::Where where, unsigned port) {
    return {.where = where, .port = static_cast<std::uint16_t>(port)};
}

/// What a kind of fault takes.
struct FaultRule {
    enum class Target : std::uint8_t { none, number, ont, ont_or_pon_port, module, peer, service };

    FaultKind kind;
    std::string_view name;
    Target target;
    unsigned least = 0; ///< of a number
    unsigned most = 0;
    /// What "value" means; empty: the kind takes none.
    std::string_view value{};
    double least_value = 0;
    double most_value = 0;
    std::optional<double> usual_value = 0; ///< without: a value must be given
    bool is_board_alarm = false;           ///< the board itself raises an alarm as long as the fault is there
    std::string_view effect{};             ///< what it does
    std::string_view shown{};              ///< where somebody who operates the OLT sees it
};

std::span<const FaultRule> fault_rules();
const FaultRule& rule_of(FaultKind kind);

/// Null when there is no fault of that name.
const FaultRule* find_fault(std::string_view name);

/// The target that the text names; empty, with a complaint that says what is expected, when it is none of the rule's.
std::optional<FaultTarget> parse_target(const FaultRule& rule, std::string_view text, std::string& complaint);
/// "3/17"; empty for any other text.
std::optional<FaultTarget> parse_ont_target(std::string_view text);
std::string to_text(const FaultTarget& target);
/// What parse_target takes, for people.
std::string expected_target(const FaultRule& rule);

} // namespace xpon::simulator
