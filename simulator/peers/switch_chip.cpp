#include "simulator/peers/peer_table.hpp"
#include "simulator/reports/port_report.hpp"
#include "simulator/reports/subscriber_report.hpp"

#include <array>

namespace xpon::simulator {
namespace {

ipc::ServerAnswer answer_front_port(const AccessNetwork& network, std::span<const std::byte> payload) {
    const auto port = parse_port(payload, front_ports);
    if (!port) {
        return {ERANGE, {}, {}};
    }
    return {0, peer_side::record_payload(report_front_port(network.plant(), *port)), {}};
}

ipc::ServerAnswer answer_front_diagnostics(const AccessNetwork& network, std::span<const std::byte> payload) {
    const auto port = parse_port(payload, front_ports);
    if (!port) {
        return {ERANGE, {}, {}};
    }
    const auto diagnostics = report_front_diagnostics(network.plant(), *port);
    return diagnostics ? ipc::ServerAnswer{0, peer_side::record_payload(*diagnostics), {}}
                       : ipc::ServerAnswer{ENODATA, {}, {}};
}

} // namespace

std::span<const PeerRoute> switch_chip_routes() {
    using peer_side::Operation;
    static constexpr std::array routes{
        PeerRoute{Operation::get_front_link_states, answer_record<report_front_links>},
        PeerRoute{Operation::get_front_port_info, answer_front_port},
        PeerRoute{Operation::get_front_port_eddi, answer_front_diagnostics},
        PeerRoute{Operation::get_pon_modules, answer_record<report_pon_modules>},
        PeerRoute{Operation::get_mac_table, answer_whole_list<report_mac_table>},
        PeerRoute{Operation::get_mac_table_of_onts, answer_list<Bitmap_ont_range, report_mac_table_of_onts>},
    };
    return routes;
}

} // namespace xpon::simulator
