#include "simulator/plant/uplinks.hpp"

#include "simulator/plant/circumstances.hpp"
#include "simulator/plant/ports.hpp"

#include <algorithm>

namespace xpon::simulator {
namespace {

bool is_member(const PortChannelSettings& channel, unsigned front_port) {
    return channel.enabled && (channel.members >> (front_port - 1) & 1U) != 0;
}

} // namespace

UplinkPort uplink_port_of(const RunningConfiguration& configuration, unsigned front_port) {
    for (unsigned channel = 1; channel <= port_channels; ++channel) {
        if (is_member(configuration.channels.at(channel - 1), front_port)) {
            return {switch_port_channel, static_cast<std::uint8_t>(channel)};
        }
    }
    return {switch_port_front, static_cast<std::uint8_t>(front_port)};
}

std::vector<Uplink> uplinks_at(const Circumstances& given, const Ports& ports, PlantTime time) {
    const auto& configuration = given.configuration;
    std::vector<Uplink> uplinks;
    std::array<unsigned, port_channels> working{};
    std::array<VlanSet, port_channels> vlans{};
    for (unsigned port = 1; port <= front_ports; ++port) {
        if (ports.front_link_since(given, port) > time) {
            continue;
        }
        const auto place = uplink_port_of(configuration, port);
        const auto& carried = configuration.front.at(port - 1).vlans;
        if (place.kind == switch_port_front) {
            uplinks.push_back({place, carried});
        } else {
            ++working.at(place.number - 1U);
            vlans.at(place.number - 1U) |= carried;
        }
    }
    for (unsigned channel = 1; channel <= port_channels; ++channel) {
        if (working.at(channel - 1) >= std::max(1U, configuration.channels.at(channel - 1).min_links)) {
            uplinks.push_back({{switch_port_channel, static_cast<std::uint8_t>(channel)}, vlans.at(channel - 1)});
        }
    }
    return uplinks;
}

} // namespace xpon::simulator
