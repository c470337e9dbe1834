#include "simulator/plant/plant.hpp"

#include <algorithm>
#include <utility>

namespace xpon::simulator {
namespace {

using Where = FaultTarget::Where;

/// ONU-IDs 0 to 253 [G.984.3].
constexpr unsigned onu_ids = 254;

} // namespace

Plant::Plant(const PlantParameters& parameters, RunningConfiguration configuration)
    : parameters_(parameters), random_(parameters.seed) {
    onts_.reserve(parameters.size.onts);
    for (unsigned nth = 0; nth < parameters.size.onts; ++nth) {
        onts_.push_back({.hardware = make_ont(parameters, nth), .situation = {}, .anchor = {}, .last_service = {}});
        // Before the start nothing had power.
        onts_.back().situation.has_power = false;
    }
    change(configuration, [&] {
        std::swap(configuration_, configuration);
        index_configuration();
        for (const auto& [kind, target_text, value] : parameters.plant->faults) {
            std::string complaint;
            if (const auto target = parse_target(rule_of(kind), target_text, complaint)) {
                faults_.set({.kind = kind, .target = *target, .value = value});
            }
        }
    });
}

void Plant::advance(PlantTime now) {
    while (faults_.next_end() <= now) {
        now_ = std::max(now_, faults_.next_end());
        change(configuration_, [&] { faults_.take_ended(now_); });
    }
    now_ = std::max(now_, now);
}

void Plant::configure(RunningConfiguration configuration) {
    change(configuration, [&] {
        std::swap(configuration_, configuration);
        index_configuration();
    });
}

void Plant::set_fault(const Fault& fault) {
    change(configuration_, [&] { faults_.set(fault); });
}

bool Plant::clear_fault(FaultKind kind, const FaultTarget& target) {
    bool was_there = false;
    change(configuration_, [&] { was_there = faults_.clear(kind, target); });
    return was_there;
}

void Plant::clear_all_faults() {
    change(configuration_, [&] { faults_.clear_all(); });
}

void Plant::change(const RunningConfiguration& before, const std::function<void()>& mutate) {
    std::vector<OntPoint> points;
    points.reserve(onts_.size());
    for (const auto& ont : onts_) {
        // A start that lies ahead is not forgotten.
        points.push_back(now_ < ont.anchor.since ? ont.anchor : point_of(ont));
    }
    mutate();
    update_ports(before.pon);
    update_onts(points, before);
    subscriber_history_.follow(*this);
}

void Plant::update_onts(const std::vector<OntPoint>& points, const RunningConfiguration& before) {
    std::vector<bool> starts(onts_.size());
    for (std::size_t nth = 0; nth < onts_.size(); ++nth) {
        auto& ont = onts_[nth];
        auto after = situation_of(ont);
        const bool changes = after != ont.situation;
        const auto point = changes ? react(points[nth], ont.situation, after, now_) : points[nth];
        update_meter(ont, points[nth], point, line_of(ont.hardware.position, after.seen_port), before);
        if (!changes) {
            continue;
        }
        starts[nth] = point.state == ont_initial && point.since >= now_;
        redirect(ont, points[nth], point);
        ont.situation = std::move(after);
    }
    share_discovery(starts);
    index_onts();
}

void Plant::redirect(TrackedOnt& ont, const OntPoint& at, const OntPoint& point) const {
    if (at.state == ont_operational && point.state != ont_operational) {
        ont.last_service = {at.since, now_};
    }
    ont.anchor = point;
}

/// ONTs that start together on one port answer in the same discovery windows, and some lose theirs.
void Plant::share_discovery(const std::vector<bool>& starts) {
    std::array<std::vector<TrackedOnt*>, pon_ports> starters;
    for (std::size_t nth = 0; nth < onts_.size(); ++nth) {
        if (starts[nth]) {
            starters.at(onts_[nth].situation.seen_port - 1U).push_back(&onts_[nth]);
        }
    }
    constexpr double loses_window = 0.25;
    for (const auto& rivals : starters) {
        for (auto* const ont : rivals) {
            const auto& at = ont->hardware.position;
            const auto waits = std::ranges::count_if(rivals, [&](const TrackedOnt* rival) {
                const auto& other = rival->hardware.position;
                return rival != ont && random_.share(Purpose::discovery_collision,
                                                     {at.port, at.ont, other.port, other.ont}) < loses_window;
            });
            ont->situation.discovery_waits = static_cast<std::uint16_t>(waits);
        }
    }
}

void Plant::index_configuration() {
    configured_.clear();
    for (const auto& [index, settings] : configuration_.onts) {
        configured_.emplace(std::pair(index / max_onts_per_port + 1, settings.serial), index);
    }
}

void Plant::index_onts() {
    by_configuration_.clear();
    for (std::size_t nth = 0; nth < onts_.size(); ++nth) {
        if (const auto& configured = onts_[nth].situation.configured) {
            by_configuration_.emplace(*configured, nth);
        }
    }
}

OntSituation Plant::situation_of(const TrackedOnt& ont) const {
    const auto& place = ont.hardware.position;
    const auto target = ont_target(place);
    const auto* const moved = faults_.find(FaultKind::ont_moved, target);
    const auto port = moved != nullptr ? static_cast<unsigned>(moved->value) : place.port;
    const auto& settings = configuration_.pon.at(port - 1);
    const auto& run = pon_.at(port - 1);

    OntSituation situation;
    situation.has_power = ont.hardware.is_switched_on && !faults_.has(FaultKind::ont_dying_gasp, target);
    situation.seen_port = static_cast<std::uint16_t>(port);
    situation.channel_is_up = run.has_module && run.is_enabled;
    situation.channel_since = run.up_since;
    // Whether its signal is strong enough is judged when something happens; the day's wandering does not cut it.
    const double power =
        received_power(ont.hardware.path, parameters_.plant->split, attenuation_of(place), PlantTime{});
    situation.is_cut = faults_.has(FaultKind::ont_los, target) ||
                       faults_.has(FaultKind::ont_los, port_target(Where::pon_port, port)) ||
                       power < loss_of_signal_dbm(settings.odn_class);
    situation.discovery_interval = std::chrono::seconds(settings.discovery_interval_s);
    situation.discovery_waits = ont.situation.discovery_waits;
    situation.is_in_reach = ont.hardware.path.distance_km >= settings.reach_min_km &&
                            ont.hardware.path.distance_km <= settings.reach_max_km;
    situation.omci_works = !faults_.has(FaultKind::ont_omci, target);
    situation.is_stopped_rogue = settings.detects_rogues && faults_.has(FaultKind::ont_rogue, target);
    add_configuration_to(situation, ont);
    return situation;
}

void Plant::add_configuration_to(OntSituation& situation, const TrackedOnt& ont) const {
    const auto found = configured_.find({situation.seen_port, ont.hardware.serial});
    if (found == configured_.end()) {
        return;
    }
    const auto& settings = configuration_.onts.at(found->second);
    const bool compares = configuration_.pon.at(situation.seen_port - 1U).compares_passwords;
    situation.configured = found->second;
    situation.is_enabled = settings.enabled;
    situation.has_onu_id = onu_id_of(found->second).has_value();
    situation.credentials = compares ? settings.password : "";
    situation.is_authentic = !compares || settings.password == password_of(ont.hardware.position);
    situation.services = static_cast<unsigned>(settings.services.size());
    situation.provision = settings.provision;
}

OntPoint Plant::point_of(const TrackedOnt& ont) const {
    return walk(ont.anchor, ont.situation, {random_, ont.hardware.position.port, ont.hardware.position.ont}, now_);
}

Plant::Ont Plant::describe(const TrackedOnt& ont) const {
    const auto& configured = ont.situation.configured;
    return {.hardware = &ont.hardware,
            .situation = &ont.situation,
            .settings = configured ? &configuration_.onts.at(*configured) : nullptr,
            .point = point_of(ont),
            .last_service = ont.last_service,
            .has_local_data = ont.has_local_data,
            .meter = &ont.meter,
            .line = &ont.line};
}

std::vector<Plant::Ont> Plant::onts() const {
    std::vector<Ont> onts;
    onts.reserve(onts_.size());
    for (const auto& ont : onts_) {
        onts.push_back(describe(ont));
    }
    return onts;
}

std::optional<Plant::Ont> Plant::ont_configured_as(std::uint16_t index) const {
    const auto found = by_configuration_.find(index);
    return found == by_configuration_.end() ? std::nullopt : std::optional(describe(onts_[found->second]));
}

double Plant::received_power_of(const Ont& ont) const {
    return received_power(ont.hardware->path, parameters_.plant->split, attenuation_of(ont.hardware->position), now_);
}

double Plant::attenuation_of(const OntPosition& ont) const {
    const auto* const fault = faults_.find(FaultKind::ont_attenuation, ont_target(ont));
    return fault == nullptr ? 0 : fault->value;
}

std::optional<std::uint8_t> Plant::onu_id_of(std::uint16_t index) const {
    const auto ont = index % max_onts_per_port;
    if (ont < onu_ids) {
        return static_cast<std::uint8_t>(ont);
    }
    // The last two take what ONTs that are not configured leave, in their order.
    const auto first = static_cast<std::uint16_t>(index - ont);
    auto to_skip = ont - onu_ids;
    for (unsigned id = 0; id < onu_ids; ++id) {
        if (!configuration_.onts.contains(static_cast<std::uint16_t>(first + id)) && to_skip-- == 0) {
            return static_cast<std::uint8_t>(id);
        }
    }
    return std::nullopt;
}

} // namespace xpon::simulator
