#include "simulator/peers/peer_table.hpp"
#include "simulator/reports/subscriber_report.hpp"

#include <array>

namespace xpon::simulator {

std::span<const PeerRoute> pppoe_routes() {
    static constexpr std::array routes{
        PeerRoute{peer_side::Operation::get_pppoe_sessions, answer_whole_list<report_pppoe_sessions>},
    };
    return routes;
}

} // namespace xpon::simulator
