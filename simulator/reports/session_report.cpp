#include "simulator/reports/subscriber_report.hpp"
#include "simulator/subscribers/leases.hpp"
#include "simulator/subscribers/pppoe_sessions.hpp"
#include "xpon/peer_side/serial_bytes.hpp"

#include <algorithm>

namespace xpon::simulator {

std::vector<Dhcp_session> report_dhcp_sessions(const AccessNetwork& network) {
    std::vector<Dhcp_session> sessions;
    Leases leases(network);
    visit_lines(network, [&](const SubscriberLine& line) {
        for (unsigned host = 0; host < line.hosts.count(); ++host) {
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
            const auto left = *granted + LeaseTimes::length - network.plant().now();
            session.life_time_msec = static_cast<std::uint32_t>(left.count());
            std::ranges::copy(serial_bytes(line.ont->hardware->serial), session.ont_serial);
        }
    });
    return sessions;
}

std::vector<Pppoe_session> report_pppoe_sessions(const AccessNetwork& network) {
    using std::chrono::seconds;
    std::vector<Pppoe_session> sessions;
    PppoeSessions known(network);
    visit_lines(network, [&](const SubscriberLine& line) {
        if (const auto found = known.find(line)) {
            auto& session = sessions.emplace_back();
            session.pon_port = static_cast<std::uint8_t>(line.place.port);
            session.ont_id = static_cast<std::uint16_t>(line.place.ont);
            session.gem_port = line.gem_port();
            session.session_id = found->id;
            std::ranges::copy(serial_bytes(line.ont->hardware->serial), session.ont_serial);
            session.duration_sec = static_cast<std::uint32_t>(std::chrono::floor<seconds>(found->open_for).count());
            session.unblock_rest_sec =
                static_cast<std::uint32_t>(std::chrono::ceil<seconds>(found->blocked_on).count());
            std::ranges::copy(line.mac_of(0), session.client_mac);
        }
    });
    return sessions;
}

} // namespace xpon::simulator
