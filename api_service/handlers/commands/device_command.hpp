#pragma once

#include "api_service/handlers/session_checks.hpp"
#include "api_service/protocol/response.hpp"
#include "xpon/core/c_status.hpp"
#include "xpon/core/logger.hpp"
#include "xpon/core/result.hpp"

#include <memory>
#include <utility>

namespace xpon::api_service {

/// The answer to a command that `act`, a call with a C status, carries out. The answer is made first, so that lack of
/// memory is found before the device is touched.
template <class Act>
core::Result<Response> answer_to_command(const std::shared_ptr<Session>& session,
                                         const std::shared_ptr<core::ILogger>& logger, Act&& act) {
    auto response = Response::make_success_response(session, logger);
    BOOST_OUTCOME_TRY(core::call_c_api(*logger, std::forward<Act>(act)));
    return response;
}

} // namespace xpon::api_service
