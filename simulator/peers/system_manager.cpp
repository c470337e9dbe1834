#include "simulator/peers/peer_table.hpp"
#include "simulator/reports/board_report.hpp"
#include "xpon/custom_layer/commands.h"

#include <array>
#include <climits>
#include <string>

#include <fmt/format.h>

namespace xpon::simulator {

namespace {

ipc::ServerAnswer reboot(Simulation& simulation, const ipc::ServerRequest& request) {
    if (peer_side::parse_record<std::uint32_t>(request.payload) != std::uint32_t{reboot_now}) {
        return {EINVAL, {}, {}};
    }
    simulation.reboot();
    const auto firmware = simulation.firmware().slots();
    simulation.note(fmt::format("reboot by {:#010x}, firmware slot {} with \"{}\"", request.client.value,
                                firmware.running, firmware.slots.at(firmware.running).version));
    return {};
}

ipc::ServerAnswer reconfigure_olt(Simulation& simulation, const ipc::ServerRequest& request) {
    if (!request.payload.empty()) {
        return {EINVAL, {}, {}};
    }
    simulation.restart_pon_ports([](unsigned) { return true; });
    simulation.note(fmt::format("reconfigure of the OLT by {:#010x}", request.client.value));
    return {};
}

ipc::ServerAnswer update_firmware(Simulation& simulation, const ipc::ServerRequest& request) {
    const std::string path(reinterpret_cast<const char*>(request.payload.data()), request.payload.size());
    if (path.size() >= PATH_MAX) {
        return {ENAMETOOLONG, {}, {}};
    }
    if (path.find('\0') != std::string::npos) {
        return {EINVAL, {}, {}};
    }
    simulation.start_firmware_update(path);
    simulation.note(fmt::format("firmware update with {} by {:#010x}", path, request.client.value));
    return {};
}

ipc::ServerAnswer answer_update_status(Simulation& simulation, const ipc::ServerRequest& request) {
    if (!request.payload.empty()) {
        return {EINVAL, {}, {}};
    }
    // Who asks goes on asking; without a pause it would do nothing else.
    static constexpr std::chrono::milliseconds pause{50};
    const auto status = simulation.firmware().update_status();
    return {status, {}, status == EBUSY ? pause : std::chrono::milliseconds{}};
}

ipc::ServerAnswer select_image(Simulation& simulation, const ipc::ServerRequest& request) {
    const auto selector = peer_side::parse_record<std::uint32_t>(request.payload);
    if (!selector) {
        return {EINVAL, {}, {}};
    }
    simulation.select_firmware(*selector);
    simulation.note(fmt::format("firmware slot {} chosen for the next boot by {:#010x}",
                                simulation.firmware().slots().chosen, request.client.value));
    return {};
}

} // namespace

std::span<const PeerRoute> system_manager_routes() {
    using peer_side::Operation;
    static constexpr std::array routes{
        PeerRoute{Operation::get_environment, answer_record<report_environment>},
        PeerRoute{Operation::reboot, reboot},
        PeerRoute{Operation::reconfigure_olt, reconfigure_olt},
        PeerRoute{Operation::update_firmware, update_firmware},
        PeerRoute{Operation::get_firmware_update_status, answer_update_status},
        PeerRoute{Operation::select_image, select_image},
    };
    return routes;
}

} // namespace xpon::simulator
