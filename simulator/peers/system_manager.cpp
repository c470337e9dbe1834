#include "simulator/peers/system_manager.hpp"

#include "simulator/peers/change_notice.hpp"
#include "simulator/peers/peer_table.hpp"
#include "simulator/plant/board_report.hpp"
#include "xpon/olt_root/olt_root.hpp"

#include <array>

#include <fmt/format.h>

namespace xpon::simulator {

std::span<const PeerRoute> system_manager_routes() {
    static constexpr std::array routes{
        PeerRoute{ipc::Operation::get_environment, answer_record<report_environment>},
    };
    return routes;
}

SystemManager::SystemManager(const PeerDescription& description, Simulation& simulation)
    : Peer(description, simulation), events_(below_olt_root("/var/log/events.log")) {}

void SystemManager::committed(const ipc::ServerRequest& request, std::span<const service::Config_change> changes) {
    events_.write(fmt::format("commit by {:#010x}: {}", request.client.value, summary_of(changes)));
    Peer::committed(request, changes);
}

} // namespace xpon::simulator
