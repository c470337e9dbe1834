#include "simulator/reports/user_ports.hpp"

#include <vector>

namespace xpon::simulator {
namespace {

/// The frames of the `nth` of `count` ports that take turns.
Frames dealt(Frames frames, std::size_t nth, std::size_t count) {
    for (auto& number : frames.of_size) {
        number = (number + nth) / count;
    }
    return frames;
}

void add_service(UserPorts& ports, const std::vector<unsigned>& places, const OntTally::Service& tally) {
    const auto up = tally.up.frames_sent();
    const auto down = tally.down.frames_received();
    const auto multicast = tally.multicast.frames_received();
    for (std::size_t nth = 0; nth < places.size(); ++nth) {
        auto& port = ports.at(places[nth]);
        port.up += dealt(up, nth, places.size());
        port.down += dealt(down, nth, places.size());
        port.down += dealt(multicast, nth, places.size());
        port.down_multicast += dealt(multicast, nth, places.size());
        port.refused_up += tally.up.refused / static_cast<double>(places.size());
    }
}

} // namespace

UserPortTraffic& UserPortTraffic::operator-=(const UserPortTraffic& less) {
    up -= less.up;
    down -= less.down;
    down_multicast -= less.down_multicast;
    down_broadcast -= less.down_broadcast;
    refused_up -= less.refused_up;
    return *this;
}

UserPorts count_user_ports(const OntModel& model, const OntSettings& settings, const OntTally& tally) {
    UserPorts ports{};
    unsigned hears_broadcasts = 0;
    for (const auto& service : settings.services) {
        const auto places = user_places(model, settings, service);
        add_service(ports, places, tally.service(service.number));
        for (const auto place : places) {
            hears_broadcasts |= service.broadcast_downstream ? 1U << place : 0U;
        }
    }
    // Of what goes to all, the short ones ask for addresses; the others announce routers and services to their groups.
    const auto announcements = tally.broadcast.frames_received();
    Frames questions;
    questions.of_size.front() = announcements.of_size.front();
    for (unsigned place = 0; place < ports.size(); ++place) {
        if ((hears_broadcasts >> place & 1U) != 0) {
            ports.at(place).down += announcements;
            ports.at(place).down_broadcast += questions;
            ports.at(place).down_multicast += announcements;
            ports.at(place).down_multicast -= questions;
        }
    }
    return ports;
}

} // namespace xpon::simulator
