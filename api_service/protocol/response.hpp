#pragma once

#include "api_service/protocol/json_errors.hpp"
#include "api_service/protocol/payload.hpp"

#include <memory>
#include <string>

namespace xpon::api_service {

struct Session;

/// What a handler answers.
struct Response {
    bool success = false;
    std::string session_id; ///< empty when no session is known
    Payload payload;
    JsonErrors errors;

    /// Without data and without errors. `session` may be empty, here and below.
    static Response make_success_response(const std::shared_ptr<Session>& session,
                                          const std::shared_ptr<ILogger>& logger);
    static Response make_error_response(const std::shared_ptr<Session>& session, const JsonErrors& errors,
                                        const std::shared_ptr<ILogger>& logger);
    static Response make_error_response(const std::shared_ptr<Session>& session, const JsonError& error,
                                        const std::shared_ptr<ILogger>& logger);
};

} // namespace xpon::api_service
