#include "simulator/plant/tracked_ont.hpp"

#include "simulator/plant/circumstances.hpp"
#include "simulator/plant/ports.hpp"

#include <utility>

namespace xpon::simulator {
namespace {

using Where = FaultTarget::Where;

/// What the configuration of the port where it is seen makes of the ONT.
void add_configuration_to(OntSituation& situation, const Circumstances& given, const PhysicalOnt& ont) {
    const auto found = given.configured.find({situation.seen_port, ont.serial});
    if (found == given.configured.end()) {
        return;
    }
    const auto& settings = given.configuration.onts.at(found->second);
    const bool compares = given.configuration.pon.at(situation.seen_port - 1U).compares_passwords;
    situation.configured = found->second;
    situation.is_enabled = settings.enabled;
    situation.has_onu_id = onu_id_of(given.configuration, found->second).has_value();
    situation.credentials = compares ? settings.password : "";
    situation.is_authentic = !compares || settings.password == password_of(ont.position);
    situation.services = static_cast<unsigned>(settings.services.size());
    situation.provision = settings.provision;
}

} // namespace

TrackedOnt::TrackedOnt(const PhysicalOnt& hardware) : hardware_(hardware) {
    situation_.has_power = false;
}

OntNow TrackedOnt::describe(const Circumstances& given) const {
    const auto& configured = situation_.configured;
    return {.hardware = &hardware_,
            .situation = &situation_,
            .settings = configured ? &given.configuration.onts.at(*configured) : nullptr,
            .point = point(given),
            .last_service = last_service_,
            .has_local_data = has_local_data_,
            .meter = &meter_,
            .line = &line_,
            .usage = &usage_};
}

PlantTime TrackedOnt::changes_at(const Circumstances& given) const {
    return given.now < anchor_.since ? anchor_.since : end_of(point(given), situation_, pace(given.random));
}

OntPoint TrackedOnt::point(const Circumstances& given) const {
    return stay_ && stay_->since <= given.now ? *stay_ : walk(anchor_, situation_, pace(given.random), given.now);
}

OntPoint TrackedOnt::next_point(const Circumstances& given) const {
    return given.now < anchor_.since ? anchor_ : point(given);
}

void TrackedOnt::wait_in_discovery(std::uint16_t windows, const Random& random) {
    situation_.discovery_waits = windows;
    look_ahead(random);
}

void TrackedOnt::begin_later(PlantTime since, const Random& random) {
    if (anchor_.state == ont_initial && anchor_.since < since) {
        anchor_.since = since;
        situation_.discovery_waits = 0; // few begin when others do
        look_ahead(random);
    }
}

bool TrackedOnt::follow(const Circumstances& given, const Ports& ports, const ReplacedSettings& replaced) {
    const auto at = next_point(given);
    auto after = situation_in(given, ports);
    const bool changes = after != situation_;
    const auto next = changes ? react(at, situation_, after, given.now) : at;
    update_meter(given, at, next, line_in(given, ports, after.seen_port), replaced);
    if (!changes) {
        return false;
    }
    redirect(at, next, given.now);
    situation_ = std::move(after);
    look_ahead(given.random);
    return next.state == ont_initial && next.since >= given.now;
}

bool TrackedOnt::carry_out(const Circumstances& given, OntCommand command) {
    const auto at = point(given);
    const auto next = obey(at, situation_, command, given.now);
    update_meter(given, at, next, line_, {});
    redirect(at, next, given.now);
    look_ahead(given.random);
    const bool starts = next.state == ont_initial;
    has_local_data_ = has_local_data_ && !(starts && command == OntCommand::reset);
    return starts;
}

OntSituation TrackedOnt::situation_in(const Circumstances& given, const Ports& ports) const {
    const auto target = ont_target(position());
    const auto* const moved = given.faults.find(FaultKind::ont_moved, target);
    const auto port = moved != nullptr ? static_cast<unsigned>(moved->value) : position().port;
    const auto& settings = given.configuration.pon.at(port - 1);
    const auto& run = ports.pon(port);

    OntSituation situation;
    situation.has_power = given.has_power(hardware_);
    situation.seen_port = static_cast<std::uint16_t>(port);
    situation.channel_is_up = run.has_module && run.is_enabled;
    situation.channel_since = run.up_since;
    // Whether its signal is strong enough is judged when something happens; the day's wandering does not cut it.
    const double power = received_power(hardware_.path, given.parameters.plant->split_of(port),
                                        given.attenuation_of(position()), PlantTime{});
    situation.is_cut = given.faults.has(FaultKind::ont_los, target) ||
                       given.faults.has(FaultKind::ont_los, port_target(Where::pon_port, port)) ||
                       power < loss_of_signal_dbm(Ports::odn_class(given, port));
    situation.discovery_interval = std::chrono::seconds(settings.discovery_interval_s);
    situation.discovery_waits = situation_.discovery_waits;
    situation.is_in_reach =
        hardware_.path.distance_km >= settings.reach_min_km && hardware_.path.distance_km <= settings.reach_max_km;
    situation.omci_works = !given.faults.has(FaultKind::ont_omci, target);
    situation.omci_is_lost = given.faults.has(FaultKind::ont_omci_lost, target);
    situation.key_works = !given.faults.has(FaultKind::ont_key, target);
    situation.is_stopped_rogue = settings.detects_rogues && given.faults.has(FaultKind::ont_rogue, target);
    add_configuration_to(situation, given, hardware_);
    return situation;
}

LineConditions TrackedOnt::line_in(const Circumstances& given, const Ports& ports, unsigned seen_port) const {
    using namespace std::chrono_literals;
    constexpr PlantTime rogue_detection_time = 2s;
    const auto& settings = given.configuration.pon.at(seen_port - 1);
    const auto& run = ports.pon(seen_port);
    // One that is looked for is found, and stopped, after this time.
    const auto until = settings.detects_rogues ? run.rogue_since + rogue_detection_time : never;
    return {.attenuation_db = given.attenuation_of(position()),
            .odn_class = Ports::odn_class(given, seen_port),
            .downstream_fec = settings.downstream_fec,
            .disturbed_from = run.has_rogue ? run.rogue_since : PlantTime{},
            .disturbed_until = run.has_rogue ? until : PlantTime{}};
}

void TrackedOnt::update_meter(const Circumstances& given, const OntPoint& was, const OntPoint& is,
                              const LineConditions& line, const ReplacedSettings& replaced) {
    const bool was_in_service = was.state == ont_operational;
    auto usage = given.acts.usage_of(position());
    const bool ends = was_in_service && is.state != ont_operational;
    if (!keeps_activation(is.state)) {
        meter_.reset();
    } else if (ends || (was_in_service && (line != line_ || usage != usage_))) {
        const auto* const replaced_settings = replaced.onts.find(*situation_.configured);
        const auto& settings =
            replaced_settings != nullptr ? *replaced_settings : given.configuration.onts.at(*situation_.configured);
        const auto metered = this->metered(given, settings, was.since);
        ends ? meter_.service_ends(metered, given.now) : meter_.conditions_change(metered, given.now);
    }
    line_ = line;
    usage_ = std::move(usage);
}

MeteredOnt TrackedOnt::metered(const Circumstances& given, const OntSettings& settings, PlantTime since) const {
    return {.given = given,
            .hardware = hardware_,
            .settings = settings,
            .split = given.parameters.plant->split_of(situation_.seen_port),
            .line = line_,
            .since = since,
            .usage = usage_};
}

void TrackedOnt::count_until(const Circumstances& given, PlantTime time) {
    if (const auto at = point(given); at.state == ont_operational) {
        meter_.settle(metered(given, given.configuration.onts.at(*situation_.configured), at.since), time);
    }
}

void TrackedOnt::redirect(const OntPoint& was, const OntPoint& is, PlantTime now) {
    if (was.state == ont_operational && is.state != ont_operational) {
        last_service_ = {was.since, now};
    }
    anchor_ = is;
}

} // namespace xpon::simulator
