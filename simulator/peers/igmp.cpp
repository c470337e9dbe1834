#include "simulator/peers/peer_table.hpp"
#include "simulator/reports/subscriber_report.hpp"

#include <array>

namespace xpon::simulator {

std::span<const PeerRoute> igmp_routes() {
    static constexpr std::array routes{
        PeerRoute{peer_side::Operation::get_igmp_snooping_vlans, answer_record<report_snooping_vlans>},
        PeerRoute{peer_side::Operation::get_igmp_groups, answer_whole_list<report_igmp_groups>},
    };
    return routes;
}

} // namespace xpon::simulator
