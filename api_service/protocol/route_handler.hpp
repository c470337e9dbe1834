#pragma once

#include "api_service/core_names.hpp"
#include "api_service/protocol/privilege_level.hpp"
#include "api_service/protocol/request.hpp"
#include "api_service/protocol/response.hpp"

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace xpon::api_service {

/// Answers a request. The session is empty when the request carried none.
using Handler = std::function<Result<Response>(const Request&, const std::shared_ptr<Session>&)>;

/// Checks and may rewrite a request before its handler sees it.
using PreHook = std::function<Result<void>(const std::shared_ptr<Session>&, Request&)>;

/// What serves one path and one method.
struct RouteHandler {
    RouteHandler(Handler route_handler, PrivilegeLevel least_privilege, std::vector<PreHook> hooks)
        : handler(std::move(route_handler)), privilege(least_privilege), pre_hooks(std::move(hooks)) {}

    Handler handler;
    PrivilegeLevel privilege; ///< a caller needs at least this
    std::vector<PreHook> pre_hooks;
};

/// One path: its handlers by method name.
using Route = std::map<std::string, RouteHandler>;

} // namespace xpon::api_service
