#include "simulator/plant/plant.hpp"

// What the plant counts of its ONTs.

namespace xpon::simulator {

/// `was` and `is`: where the ONT is until now and from now on.
void Plant::update_meter(TrackedOnt& ont, const OntPoint& was, const OntPoint& is, const LineConditions& line,
                         const RunningConfiguration& before) {
    const bool was_in_service = was.state == ont_operational;
    const bool ends = was_in_service && is.state != ont_operational;
    if (!keeps_activation(is.state)) {
        ont.meter.reset();
    } else if (ends || (was_in_service && line != ont.line)) {
        const MeteredOnt metered{.random = random_,
                                 .hardware = ont.hardware,
                                 .settings = before.onts.at(*ont.situation.configured),
                                 .split = parameters_.plant->split,
                                 .line = ont.line,
                                 .since = was.since};
        ends ? ont.meter.service_ends(metered, now_) : ont.meter.line_changes(metered, now_);
    }
    ont.line = line;
}

MeteredOnt Plant::metered(const Ont& ont) const {
    return {.random = random_,
            .hardware = *ont.hardware,
            .settings = *ont.settings,
            .split = parameters_.plant->split,
            .line = *ont.line,
            .since = ont.point.since};
}

LineConditions Plant::line_of(const OntPosition& ont, unsigned seen_port) const {
    using namespace std::chrono_literals;
    constexpr PlantTime rogue_detection_time = 2s;
    const auto& settings = configuration_.pon.at(seen_port - 1);
    const auto& run = pon_.at(seen_port - 1);
    // One that is looked for is found, and stopped, after this time.
    const auto until = settings.detects_rogues ? run.rogue_since + rogue_detection_time : never;
    return {.attenuation_db = attenuation_of(ont),
            .odn_class = settings.odn_class,
            .downstream_fec = settings.downstream_fec,
            .disturbed_from = run.has_rogue ? run.rogue_since : PlantTime{},
            .disturbed_until = run.has_rogue ? until : PlantTime{}};
}

} // namespace xpon::simulator
