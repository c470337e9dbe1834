#include "simulator/reports/dhcp_sessions.hpp"

#include "simulator/plant/serial_bytes.hpp"
#include "simulator/subscribers/leases.hpp"
#include "simulator/subscribers/subscribers.hpp"

#include <algorithm>

namespace xpon::simulator {

std::vector<Dhcp_session> report_dhcp_sessions(const Plant& plant) {
    std::vector<Dhcp_session> sessions;
    Leases leases(plant);
    visit_lines(plant, [&](const SubscriberLine& line) {
        for (unsigned host = 0; host < line.hosts; ++host) {
            const auto granted = leases.last_grant(line, host);
            if (!granted) {
                continue;
            }
            auto& session = sessions.emplace_back();
            session.pon_port = static_cast<std::uint8_t>(line.place.port);
            session.ont_id = static_cast<std::uint16_t>(line.place.ont);
            std::ranges::copy(line.mac_of(host), session.mac);
            session.service_id = line.service->number;
            session.gem_port = line.gem_port();
            session.outer_vid = line.service->s_vid;
            std::ranges::copy(line.ip_of(host), session.ip);
            session.life_time_msec = static_cast<std::uint32_t>((*granted + Leases::length - plant.now()).count());
            put_serial(session.ont_serial, line.ont->hardware->serial);
        }
    });
    return sessions;
}

} // namespace xpon::simulator
