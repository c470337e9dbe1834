#include "simulator/peers/peer_table.hpp"
#include "simulator/reports/subscriber_report.hpp"

#include <array>

namespace xpon::simulator {

std::span<const PeerRoute> dhcp_relay_routes() {
    static constexpr std::array routes{
        PeerRoute{peer_side::Operation::get_dhcp_sessions, answer_whole_list<report_dhcp_sessions>},
    };
    return routes;
}

} // namespace xpon::simulator
