#include "simulator/peers/peer_table.hpp"
#include "simulator/plant/ont_report.hpp"
#include "simulator/plant/port_report.hpp"

#include <array>

namespace xpon::simulator {
namespace {

ipc::ServerAnswer answer_port_type(const Plant& plant, std::span<const std::byte> payload) {
    const auto port = parse_port(payload, pon_ports);
    if (!port) {
        return {ERANGE, {}, {}};
    }
    // It is the module that makes the port one of a technology; the plant has no other than GPON.
    return {0, ipc::record_payload(plant.pon_module(*port) == nullptr ? pon_unknown : pon_gpon), {}};
}

} // namespace

std::span<const PeerRoute> pon_state_machine_routes() {
    using ipc::Operation;
    static constexpr std::array routes{
        PeerRoute{Operation::get_pon_states, answer_record<report_pon_states>},
        PeerRoute{Operation::get_pon_port_type, answer_port_type},
        PeerRoute{Operation::get_ont_states, answer_list<Bitmap_ont_range, report_ont_states>},
        PeerRoute{Operation::get_unactivated_onts, answer_list<Bitmap_pon_port_range, report_unactivated>},
    };
    return routes;
}

} // namespace xpon::simulator
