#include "cfgdb/change_notice.hpp"

#include "ipc/ipc_handle.hpp"
#include "xpon/service/config_change.hpp"

#include <vector>

namespace xpon::cfgdb {

void send_change_notice(const ipc::IIpc* ipc, std::span<const RecordId> changes) {
    auto* const handle = ipc == nullptr ? nullptr : ipc->raw();
    if (handle == nullptr) {
        return;
    }
    std::vector<service::Config_change> notice;
    notice.reserve(changes.size());
    for (const auto& id : changes) {
        notice.push_back({static_cast<std::uint16_t>(id.element), {id.indices[0], id.indices[1]}});
    }
    handle->notify_all(ipc::Operation::configuration_changed, std::as_bytes(std::span(notice)));
}

} // namespace xpon::cfgdb
