#pragma once

#include "api_service/auth/session.hpp"
#include "api_service/protocol/request.hpp"
#include "api_service/protocol/response.hpp"
#include "api_service/protocol/shape.hpp"

#include <memory>

namespace xpon::api_service {

// Turn the "text" of the data into the form in which the configuration keeps secrets, and back. They never log it.

extern const RouteShape text_handler_shape;

Result<Response> text_obfuscate_handler(const std::shared_ptr<ILogger>& logger, const Request& request,
                                        const std::shared_ptr<Session>& session);
Result<Response> text_deobfuscate_handler(const std::shared_ptr<ILogger>& logger, const Request& request,
                                          const std::shared_ptr<Session>& session);

} // namespace xpon::api_service
