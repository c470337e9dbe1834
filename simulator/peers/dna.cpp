#include "simulator/peers/peer_table.hpp"
#include "xpon/custom_layer/snmp.h"
#include "xpon/peer_side/fixed_text.hpp"

#include <algorithm>
#include <array>
#include <cctype>
#include <string>

#include <fmt/format.h>

namespace xpon::simulator {
namespace {

/// An engine id of format 3, a MAC address [RFC 3411 5, SnmpEngineID]: the enterprise number with the top bit set, the
/// format, the address of the board. The enterprise number is the one for documentation [RFC 5612].
Snmp_environment_data report_engine_id(const Plant& plant) {
    constexpr std::uint32_t enterprise = 32473;
    constexpr unsigned format_mac = 3;
    std::string mac(plant.parameters().plant->board.mac_address);
    std::erase(mac, ':');
    std::ranges::transform(mac, mac.begin(),
                           [](unsigned char digit) { return static_cast<char>(std::tolower(digit)); });
    Snmp_environment_data data{};
    put_text(data.engine_id, fmt::format("{:08x}{:02x}{}", enterprise | 0x80000000U, format_mac, mac));
    return data;
}

/// The configuration is written by the one who asks; it is for this daemon to say that it may.
ipc::ServerAnswer allow_saving(Simulation& simulation, const ipc::ServerRequest& request) {
    if (!request.payload.empty()) {
        return {EINVAL, {}, {}};
    }
    simulation.note(fmt::format("save of the configuration by {:#010x}", request.client.value));
    return {};
}

} // namespace

std::span<const PeerRoute> dna_routes() {
    using peer_side::Operation;
    static constexpr std::array routes{
        PeerRoute{Operation::get_engine_id, answer_record<report_engine_id>},
        PeerRoute{Operation::save_configuration, allow_saving},
    };
    return routes;
}

} // namespace xpon::simulator
