#pragma once

#include "api_service/auth/session.hpp"
#include "api_service/protocol/response.hpp"
#include "xpon/core/guard.hpp"
#include "xpon/core/json_tree.hpp"
#include "xpon/core/logger.hpp"
#include "xpon/core/result.hpp"

#include <functional>
#include <memory>
#include <utility>

namespace xpon::api_service {

/// The answer whose data is the tree that `build` makes.
template <class Build>
core::Result<Response> answer_with_data(const std::shared_ptr<Session>& session,
                                        const std::shared_ptr<core::ILogger>& logger, Build&& build) {
    BOOST_OUTCOME_TRY(core::JsonTree data, core::guarded(*logger, std::forward<Build>(build)));
    auto response = Response::make_success_response(session, logger);
    response.payload = Payload(std::move(data));
    return response;
}

} // namespace xpon::api_service
