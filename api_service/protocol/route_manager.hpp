#pragma once

#include "api_service/core_names.hpp"
#include "api_service/protocol/route_handler.hpp"

#include <map>
#include <memory>
#include <string>

namespace xpon::api_service {

/// The registry of routes. Paths and methods match exactly. Filled at start-up, only read afterwards.
class RouteManager {
public:
    explicit RouteManager(const std::shared_ptr<ILogger>& logger);

    /// Registers a copy of `handler`; a second registration of the same path and method replaces the first.
    Result<void> add_route(const std::string& path, const std::string& method, const RouteHandler& handler);

    /// A copy of what is registered, or an error of code Empty.
    [[nodiscard]] Result<RouteHandler> lookup_route(const std::string& path, const std::string& method) const;

    /// The same without a copy: what is registered now.
    [[nodiscard]] Result<const RouteHandler*> find_route(const std::string& path, const std::string& method) const;

private:
    std::shared_ptr<ILogger> logger_;
    std::map<std::string, Route> routes_;
};

} // namespace xpon::api_service
