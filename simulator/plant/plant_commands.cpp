#include "simulator/plant/plant.hpp"

#include <algorithm>

// What the OLT and its ONTs are told to do.

namespace xpon::simulator {

void Plant::boot(PlantTime takes) {
    change(configuration_, [&] {
        booted_at_ = now_;
        boot_ends_ = now_ + takes;
        for (auto& run : pon_) {
            run.up_since = boot_ends_ + channel_start_time;
        }
        for (auto& run : front_) {
            run.up_since = boot_ends_ + link_up_time;
        }
    });
    // Of what was before the OLT's daemons know nothing.
    std::ranges::for_each(onts_, [](TrackedOnt& ont) { ont.last_service.reset(); });
}

void Plant::restart_pon_ports(const std::function<bool(unsigned port)>& is_meant) {
    change(configuration_, [&] {
        for (unsigned port = 1; port <= pon_ports; ++port) {
            if (is_meant(port)) {
                pon_.at(port - 1).up_since = now_ + channel_start_time;
            }
        }
    });
}

std::vector<std::uint16_t> Plant::command_onts(OntCommand command,
                                               const std::function<bool(std::uint16_t index)>& is_meant) {
    std::vector<std::uint16_t> commanded;
    std::vector<bool> starts(onts_.size());
    for (std::size_t nth = 0; nth < onts_.size(); ++nth) {
        auto& ont = onts_[nth];
        const auto at = point_of(ont);
        const auto& place = ont.situation.configured;
        if (!place || !is_listed(at.state) || !is_meant(*place)) {
            continue;
        }
        const auto point = obey(at, ont.situation, command, now_);
        update_meter(ont, at, point, ont.line, configuration_);
        redirect(ont, at, point);
        starts[nth] = point.state == ont_initial;
        ont.has_local_data = ont.has_local_data && !(starts[nth] && command == OntCommand::reset);
        commanded.push_back(*place);
    }
    share_discovery(starts);
    std::ranges::sort(commanded);
    return commanded;
}

} // namespace xpon::simulator
