#include "simulator/plant/fault_kinds.hpp"

#include "simulator/plant/ont_layout.hpp"
#include "xpon/peer_side/operations.hpp"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <ranges>

#include <fmt/format.h>

namespace xpon::simulator {
namespace {

using Target = FaultRule::Target;
using Where = FaultTarget::Where;

constexpr std::optional<double> must_be_given{};

// clang-format off
constexpr FaultRule rules[]{
    {.kind = FaultKind::ont_los, .name = "ont_los", .target = Target::ont_or_pon_port,
     .effect = "the fibre is cut: POPUP for 0.1 s, then gone; after the repair it starts anew",
     .shown = "ONT state, alarm LOSi"},
    {.kind = FaultKind::ont_dying_gasp, .name = "ont_dying_gasp", .target = Target::ont,
     .effect = "it loses its power and is gone at once; afterwards it powers up",
     .shown = "ONT state, alarm DGi"},
    {.kind = FaultKind::ont_rogue, .name = "ont_rogue", .target = Target::ont,
     .effect = "it sends in the time of others, who get bit errors until it is stopped after 2 s, or for as long as the port does not look for rogues",
     .shown = "EMERGENCY_STOP, or PON port FAULT; error counters of the port, alarm TIWi"},
    {.kind = FaultKind::ont_attenuation, .name = "ont_attenuation", .target = Target::ont, .value = "dB", .most_value = 40, .usual_value = must_be_given,
     .effect = "so much less light both ways: the more, the more bits are wrong, up to the loss of the signal",
     .shown = "RSSI, error counters, alarms SDi, SFi and LOSi in this order"},
    {.kind = FaultKind::ont_omci, .name = "ont_omci", .target = Target::ont,
     .effect = "its OMCI fails at once; it is tried again every 60 s",
     .shown = "CONFIG_FAILED, alarm LOAMi"},
    {.kind = FaultKind::ont_omci_lost, .name = "ont_omci_lost", .target = Target::ont,
     .effect = "its OMCI channel is lost; it serves on until it has to be provisioned again",
     .shown = "alarm LOAMi, CONFIG_FAILED after the next change of its services"},
    {.kind = FaultKind::ont_key, .name = "ont_key", .target = Target::ont,
     .effect = "its key for encryption is not the OLT's: it is deactivated after each authentication, over and over",
     .shown = "ONT state, alarm LOKi"},
    {.kind = FaultKind::ont_drift, .name = "ont_drift", .target = Target::ont, .value = "bit times", .least_value = 1, .most_value = 64, .usual_value = 8,
     .effect = "it answers later than it should; the OLT shortens its equalisation delay",
     .shown = "equalisation delay, alarm DOWi"},
    {.kind = FaultKind::ont_moved, .name = "ont_moved", .target = Target::ont, .value = "PON port", .least_value = 1, .most_value = pon_ports, .usual_value = must_be_given,
     .effect = "it is plugged into the fibre of another PON port",
     .shown = "unactivated ONTs of that port"},
    {.kind = FaultKind::module_absent, .name = "module_absent", .target = Target::module, .is_board_alarm = true,
     .effect = "the module is pulled; a PON port's ONTs are gone, a front port has no link",
     .shown = "port state, module condition"},
    {.kind = FaultKind::module_excluded, .name = "module_excluded", .target = Target::module, .is_board_alarm = true,
     .effect = "the module is refused by the board", .shown = "module condition"},
    {.kind = FaultKind::module_no_diagnostics, .name = "module_no_diagnostics", .target = Target::module,
     .effect = "the module measures nothing of itself", .shown = "module diagnostics"},
    {.kind = FaultKind::module_hot, .name = "module_hot", .target = Target::module, .value = "degrees more", .least_value = 1, .most_value = 80, .usual_value = 50, .is_board_alarm = true,
     .effect = "the module is so much hotter", .shown = "module temperature and condition, sensors, fans"},
    {.kind = FaultKind::fan_failed, .name = "fan_failed", .target = Target::number, .least = 1, .most = 4, .is_board_alarm = true,
     .effect = "the fan stands still, and the board gets hotter", .shown = "fan flags and rates, sensors"},
    {.kind = FaultKind::fan_absent, .name = "fan_absent", .target = Target::number, .least = 1, .most = 4, .is_board_alarm = true,
     .effect = "the fan is taken out", .shown = "fan flags and rates, sensors"},
    {.kind = FaultKind::psu_failed, .name = "psu_failed", .target = Target::number, .least = 1, .most = 2, .is_board_alarm = true,
     .effect = "the supply gives no power; the other one, or a battery, does", .shown = "supply flags"},
    {.kind = FaultKind::psu2_present, .name = "psu2_present", .target = Target::none,
     .effect = "a second supply is plugged in; no fault, but something to see", .shown = "supply flags"},
    {.kind = FaultKind::temperature, .name = "temperature", .target = Target::number, .most = 4, .value = "degrees", .least_value = -60, .most_value = 125, .usual_value = must_be_given, .is_board_alarm = true,
     .effect = "the sensor reads this", .shown = "sensors, fans"},
    {.kind = FaultKind::slot_corrupt, .name = "slot_corrupt", .target = Target::number, .most = 1, .is_board_alarm = true,
     .effect = "the firmware slot holds no valid image", .shown = "firmware versions; refused as next boot"},
    {.kind = FaultKind::commit_refused, .name = "commit_refused", .target = Target::peer,
     .effect = "the daemon refuses every configuration", .shown = "the answer to commits"},
    {.kind = FaultKind::peer_down, .name = "peer_down", .target = Target::peer,
     .effect = "the daemon does not run", .shown = "requests that need it fail at once; its log"},
    {.kind = FaultKind::peer_slow, .name = "peer_slow", .target = Target::peer, .value = "ms", .least_value = 1, .most_value = 600000, .usual_value = must_be_given,
     .effect = "the daemon answers so much later, of real time; above 3 s its callers give up", .shown = "requests that need it are slow, or fail"},
    {.kind = FaultKind::peer_error, .name = "peer_error", .target = Target::peer, .value = "errno", .least_value = 1, .most_value = 4095, .usual_value = 5,
     .effect = "the daemon fails every call but those for a commit", .shown = "requests that need it fail"},
    {.kind = FaultKind::pppoe_blocked, .name = "pppoe_blocked", .target = Target::service,
     .effect = "the network refuses the PPPoE client of the service, which waits 300 s after every ten attempts", .shown = "PPPoE sessions: no id, and the time that is left"},
};
// clang-format on

std::optional<std::uint16_t> parse_number(std::string_view text, unsigned least, unsigned most) {
    std::uint16_t number = 0;
    const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool is_number = fault == std::errc{} && end == text.data() + text.size();
    return is_number && number >= least && number <= most ? std::optional(number) : std::nullopt;
}

std::optional<FaultTarget> parse_service(std::string_view text) {
    const auto slash = text.rfind('/');
    if (slash == std::string_view::npos) {
        return std::nullopt;
    }
    auto target = parse_ont_target(text.substr(0, slash));
    const auto service = parse_number(text.substr(slash + 1), 1, max_services);
    if (!target || !service) {
        return std::nullopt;
    }
    target->where = Where::service;
    target->service = *service;
    return target;
}

std::optional<FaultTarget> parse_port(std::string_view text, Where where, unsigned most) {
    const auto port = parse_number(text, 1, most);
    return port ? std::optional(FaultTarget{.where = where, .port = *port}) : std::nullopt;
}

std::optional<FaultTarget> parse_module(std::string_view text) {
    static constexpr std::string_view pon = "pon/";
    static constexpr std::string_view front = "front/";
    if (text.starts_with(pon)) {
        return parse_port(text.substr(pon.size()), Where::pon_port, pon_ports);
    }
    if (text.starts_with(front)) {
        return parse_port(text.substr(front.size()), Where::front_port, front_ports);
    }
    return std::nullopt;
}

std::optional<FaultTarget> parse_peer(std::string_view text) {
    const auto* const peer = std::ranges::find(peer_side::peer_names, text, &peer_side::PeerName::name);
    return peer == peer_side::peer_names.end() ? std::nullopt
                                               : std::optional(FaultTarget{.where = Where::peer, .peer = peer->name});
}

std::optional<FaultTarget> try_target(const FaultRule& rule, std::string_view text) {
    switch (rule.target) {
    case Target::none:
        return text.empty() ? std::optional(FaultTarget{}) : std::nullopt;
    case Target::number:
        if (const auto number = parse_number(text, rule.least, rule.most)) {
            return FaultTarget{.where = Where::number, .port = *number};
        }
        return std::nullopt;
    case Target::ont:
        return parse_ont_target(text);
    case Target::ont_or_pon_port:
        return text.find('/') == std::string_view::npos || text.starts_with("pon/")
                   ? parse_port(text.starts_with("pon/") ? text.substr(4) : text, Where::pon_port, pon_ports)
                   : parse_ont_target(text);
    case Target::module:
        return parse_module(text);
    case Target::peer:
        return parse_peer(text);
    case Target::service:
        return parse_service(text);
    }
    return std::nullopt;
}

} // namespace

std::span<const FaultRule> fault_rules() {
    return rules;
}

const FaultRule& rule_of(FaultKind kind) {
    return *std::ranges::find(rules, kind, &FaultRule::kind);
}

const FaultRule* find_fault(std::string_view name) {
    const auto* const found = std::ranges::find(rules, name, &FaultRule::name);
    return found == std::end(rules) ? nullptr : found;
}

std::optional<FaultTarget> parse_target(const FaultRule& rule, std::string_view text, std::string& complaint) {
    auto target = try_target(rule, text);
    if (!target) {
        complaint = fmt::format("{} takes {}, not '{}'", rule.name, expected_target(rule), text);
    }
    return target;
}

std::optional<FaultTarget> parse_ont_target(std::string_view text) {
    const auto slash = text.find('/');
    if (slash == std::string_view::npos) {
        return std::nullopt;
    }
    const auto port = parse_number(text.substr(0, slash), 1, pon_ports);
    const auto ont = parse_number(text.substr(slash + 1), 1, max_onts_per_port);
    return port && ont ? std::optional(FaultTarget{.where = Where::ont, .port = *port, .ont = *ont}) : std::nullopt;
}

std::string to_text(const FaultTarget& target) {
    switch (target.where) {
    case Where::plant:
        return "";
    case Where::number:
        return fmt::to_string(target.port);
    case Where::ont:
        return fmt::format("{}/{}", target.port, target.ont);
    case Where::pon_port:
        return fmt::format("pon/{}", target.port);
    case Where::front_port:
        return fmt::format("front/{}", target.port);
    case Where::peer:
        return std::string(target.peer);
    case Where::service:
        return fmt::format("{}/{}/{}", target.port, target.ont, target.service);
    }
    return {};
}

std::string expected_target(const FaultRule& rule) {
    switch (rule.target) {
    case Target::none:
        return "no target";
    case Target::number:
        return fmt::format("a number from {} to {}", rule.least, rule.most);
    case Target::ont:
        return fmt::format("an ONT as PORT/ONT, 1/1 to {}/{}", pon_ports, max_onts_per_port);
    case Target::ont_or_pon_port:
        return fmt::format("an ONT as PORT/ONT, or a PON port from 1 to {}", pon_ports);
    case Target::module:
        return fmt::format("a module as pon/1 to pon/{} or front/1 to front/{}", pon_ports, front_ports);
    case Target::peer:
        return fmt::format("one of {}",
                           fmt::join(peer_side::peer_names | std::views::transform(&peer_side::PeerName::name), ", "));
    case Target::service:
        return fmt::format("a service as PORT/ONT/SERVICE, 1/1/1 to {}/{}/{}", pon_ports, max_onts_per_port,
                           max_services);
    }
    return {};
}

} // namespace xpon::simulator
