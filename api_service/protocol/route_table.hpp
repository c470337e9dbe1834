#pragma once

#include "api_service/auth/pam_interfaces.hpp"
#include "api_service/auth/session_manager.hpp"
#include "api_service/core_names.hpp"
#include "api_service/protocol/route_handler.hpp"
#include "api_service/protocol/shape.hpp"
#include "xpon/ipc/ipc.hpp"

#include <memory>
#include <span>
#include <string_view>
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

/// What serves a route: how it is made, and what is asked and answered at a path. Those of configuration elements have
/// no shape of their own: they take and give the element's records.
struct RouteTarget {
    Handler (*make_handler)(const HandlerServices&);
    const RouteShape& (*shape_at)(std::string_view path);
};

/// One route of the API.
struct RouteRow {
    const char* path;
    const char* method;
    PrivilegeLevel privilege;
    RouteTarget target;
    std::vector<PreHook> (*make_pre_hooks)(const HandlerServices&) = no_pre_hooks;
};

/// All routes, in the order in which they are registered.
std::span<const RouteRow> route_table();

} // namespace xpon::api_service
