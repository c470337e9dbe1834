#include "api_service/protocol/route_manager.hpp"

namespace xpon::api_service {

RouteManager::RouteManager(const std::shared_ptr<ILogger>& logger) : logger_(logger) {}

Result<void> RouteManager::add_route(const std::string& path, const std::string& method, const RouteHandler& handler) {
    routes_[path].insert_or_assign(method, handler);
    return core::success();
}

Result<RouteHandler> RouteManager::lookup_route(const std::string& path, const std::string& method) const {
    BOOST_OUTCOME_TRY(const auto* const handler, find_route(path, method));
    return *handler;
}

Result<const RouteHandler*> RouteManager::find_route(const std::string& path, const std::string& method) const {
    const auto route = routes_.find(path);
    if (route == routes_.end()) {
        log_error(*logger_, "Path {} not found", path);
        return ErrorPayload(Error::Empty);
    }
    const auto handler = route->second.find(method);
    if (handler == route->second.end()) {
        log_error(*logger_, "Method {} not found for path {}", method, path);
        return ErrorPayload(Error::Empty);
    }
    return &handler->second;
}

} // namespace xpon::api_service
