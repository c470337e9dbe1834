#include "simulator/plant/fault_kinds.hpp"

#include "simulator/plant/ont_layout.hpp"
#include "xpon/peer_side/operations.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <ranges>

#include <fmt/format.h>

namespace xpon::simulator {
namespace {

using Target = FaultRule::Target;
using Where = FaultTarget::Where;

constexpr std::optional<double> must_be_given{};

constexpr std::array rules{
    FaultRule{FaultKind::ont_los, "ont_los", Target::ont_or_pon_port, 0, 0, "", 0, 0, 0},
    FaultRule{FaultKind::ont_dying_gasp, "ont_dying_gasp", Target::ont, 0, 0, "", 0, 0, 0},
    FaultRule{FaultKind::ont_rogue, "ont_rogue", Target::ont, 0, 0, "", 0, 0, 0},
    FaultRule{FaultKind::ont_attenuation, "ont_attenuation", Target::ont, 0, 0, "dB", 0, 40, must_be_given},
    FaultRule{FaultKind::ont_omci, "ont_omci", Target::ont, 0, 0, "", 0, 0, 0},
    FaultRule{FaultKind::ont_moved, "ont_moved", Target::ont, 0, 0, "PON port", 1, pon_ports, must_be_given},
    FaultRule{FaultKind::module_absent, "module_absent", Target::module, 0, 0, "", 0, 0, 0},
    FaultRule{FaultKind::module_excluded, "module_excluded", Target::module, 0, 0, "", 0, 0, 0},
    FaultRule{FaultKind::module_no_diagnostics, "module_no_diagnostics", Target::module, 0, 0, "", 0, 0, 0},
    FaultRule{FaultKind::module_hot, "module_hot", Target::module, 0, 0, "degrees more", 1, 80, 50},
    FaultRule{FaultKind::fan_failed, "fan_failed", Target::number, 1, 4, "", 0, 0, 0},
    FaultRule{FaultKind::fan_absent, "fan_absent", Target::number, 1, 4, "", 0, 0, 0},
    FaultRule{FaultKind::psu_failed, "psu_failed", Target::number, 1, 2, "", 0, 0, 0},
    FaultRule{FaultKind::psu2_present, "psu2_present", Target::none, 0, 0, "", 0, 0, 0},
    FaultRule{FaultKind::temperature, "temperature", Target::number, 0, 4, "degrees", -60, 125, must_be_given},
    FaultRule{FaultKind::slot_corrupt, "slot_corrupt", Target::number, 0, 1, "", 0, 0, 0},
    FaultRule{FaultKind::commit_refused, "commit_refused", Target::peer, 0, 0, "", 0, 0, 0},
    FaultRule{FaultKind::peer_down, "peer_down", Target::peer, 0, 0, "", 0, 0, 0},
    FaultRule{FaultKind::peer_slow, "peer_slow", Target::peer, 0, 0, "ms", 1, 600000, must_be_given},
    FaultRule{FaultKind::peer_error, "peer_error", Target::peer, 0, 0, "errno", 1, 4095, 5},
    FaultRule{FaultKind::pppoe_blocked, "pppoe_blocked", Target::service, 0, 0, "", 0, 0, 0},
};

std::optional<std::uint16_t> parse_number(std::string_view text, unsigned least, unsigned most) {
    std::uint16_t number = 0;
    const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool is_number = fault == std::errc{} && end == text.data() + text.size();
    return is_number && number >= least && number <= most ? std::optional(number) : std::nullopt;
}

std::optional<FaultTarget> parse_ont(std::string_view text) {
    const auto slash = text.find('/');
    if (slash == std::string_view::npos) {
        return std::nullopt;
    }
    const auto port = parse_number(text.substr(0, slash), 1, pon_ports);
    const auto ont = parse_number(text.substr(slash + 1), 1, max_onts_per_port);
    return port && ont ? std::optional(FaultTarget{.where = Where::ont, .port = *port, .ont = *ont}) : std::nullopt;
}

std::optional<FaultTarget> parse_service(std::string_view text) {
    const auto slash = text.rfind('/');
    if (slash == std::string_view::npos) {
        return std::nullopt;
    }
    auto target = parse_ont(text.substr(0, slash));
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
    const auto* const peer = std::ranges::find(ipc::peer_names, text, &ipc::PeerName::name);
    return peer == ipc::peer_names.end() ? std::nullopt
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
        return parse_ont(text);
    case Target::ont_or_pon_port:
        return text.find('/') == std::string_view::npos || text.starts_with("pon/")
                   ? parse_port(text.starts_with("pon/") ? text.substr(4) : text, Where::pon_port, pon_ports)
                   : parse_ont(text);
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
    return found == rules.end() ? nullptr : found;
}

std::optional<FaultTarget> parse_target(const FaultRule& rule, std::string_view text, std::string& complaint) {
    auto target = try_target(rule, text);
    if (!target) {
        complaint = fmt::format("{} takes {}, not '{}'", rule.name, expected_target(rule), text);
    }
    return target;
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
        return fmt::format("one of {}", fmt::join(ipc::peer_names | std::views::transform(&ipc::PeerName::name), ", "));
    case Target::service:
        return fmt::format("a service as PORT/ONT/SERVICE, 1/1/1 to {}/{}/{}", pon_ports, max_onts_per_port,
                           max_services);
    }
    return {};
}

} // namespace xpon::simulator
