#include "simulator/reports/ont_counts.hpp"

#include <algorithm>

namespace xpon::simulator {

std::optional<OntCounts> OntCounts::of(const Plant& plant, std::uint16_t index) {
    const auto ont = plant.ont_configured_as(index);
    const bool is_counted =
        ont && ont->settings != nullptr && ont->settings->pm_collection && ont->point.state == ont_operational;
    return is_counted ? std::optional(OntCounts(plant, *ont)) : std::nullopt;
}

bool has_multicast(const OntSettings& settings) {
    return std::ranges::any_of(settings.services, [](const ServiceSettings& service) {
        return service.type == cfgdb::ProfileOntCrossConnect::ServiceType::iptv;
    });
}

bool has_broadcast(const OntSettings& settings) {
    return std::ranges::any_of(settings.services, &ServiceSettings::broadcast_downstream);
}

OntCounts::Interval OntCounts::last_interval() const {
    constexpr PlantTime length = std::chrono::minutes(15);
    static_assert(seconds_of(length) == Interval::seconds);
    const auto begin = metered_.since;
    const auto finished = (now_ - begin) / length;
    if (finished == 0) {
        return {.finished = 0, .before = {}, .after = {}};
    }
    return {.finished = static_cast<std::uint64_t>(finished),
            .before = meter_.read(metered_, begin + (finished - 1) * length),
            .after = meter_.read(metered_, begin + finished * length)};
}

std::uint64_t OntCounts::happened(double expected, const Interval& interval, std::uint64_t what) const {
    const auto& place = hardware().position;
    const double chance =
        metered_.given.random.share(Purpose::counter_rounding, {place.port, place.ont, interval.finished, what});
    return static_cast<std::uint64_t>(expected + chance);
}

} // namespace xpon::simulator
