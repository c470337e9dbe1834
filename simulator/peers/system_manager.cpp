#include "simulator/peers/system_manager.hpp"

#include "simulator/peers/change_notice.hpp"
#include "xpon/ipc/operations.hpp"

#include <utility>

#include <fmt/format.h>

namespace xpon::simulator {

SystemManager::SystemManager(EventLog events) : events_(std::move(events)) {}

void SystemManager::notice(const ipc::ServerRequest& request) {
    if (static_cast<ipc::Operation>(request.operation) != ipc::Operation::configuration_changed) {
        return;
    }
    const auto changes = parse_change_notice(request.payload);
    events_.write(changes ? fmt::format("commit by {:#010x}: {}", request.client.value, summary_of(*changes))
                          : fmt::format("malformed notice of a commit by {:#010x}, {} bytes", request.client.value,
                                        request.payload.size()));
}

} // namespace xpon::simulator
