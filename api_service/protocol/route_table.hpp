#pragma once

#include "api_service/auth/pam_interfaces.hpp"
#include "api_service/auth/session_manager.hpp"
#include "api_service/core_names.hpp"
#include "api_service/protocol/route_handler.hpp"
#include "xpon/ipc/ipc.hpp"

#include <memory>
#include <span>
#include <vector>

namespace xpon::api_service {

/// What handlers are made from.
struct HandlerServices {
    std::shared_ptr<ILogger> logger;
    std::shared_ptr<ipc::IIpc> ipc;
    std::shared_ptr<SessionManager> session_manager;
    std::shared_ptr<IPamApi> pam;
};

/// What most routes have.
inline std::vector<PreHook> no_pre_hooks(const HandlerServices&) {
    return {};
}

/// One route of the API.
struct RouteRow {
    const char* path;
    const char* method;
    PrivilegeLevel privilege;
    Handler (*make_handler)(const HandlerServices&);
    std::vector<PreHook> (*make_pre_hooks)(const HandlerServices&) = no_pre_hooks;
};

/// All routes, in the order in which they are registered.
std::span<const RouteRow> route_table();

} // namespace xpon::api_service
