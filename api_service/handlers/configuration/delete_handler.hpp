#pragma once

#include "api_service/handlers/configuration/request_checks.hpp"
#include "api_service/handlers/session_checks.hpp"
#include "xpon/core/c_status.hpp"

#include <cstddef>
#include <functional>
#include <memory>
#include <utility>

namespace xpon::api_service {

/// Returns every record that the request addresses to its initial state in the candidate configuration.
template <std::size_t INDICES_COUNT>
class ConfigurationDeleteHandler {
public:
    using Reset = std::function<int(const void* db, int context, unsigned short* indices)>;

    ConfigurationDeleteHandler(std::shared_ptr<core::ILogger> logger, Reset reset)
        : logger_(std::move(logger)), reset_(std::move(reset)) {}

    core::Result<Response> operator()(const Request& request, const std::shared_ptr<Session>& session) const {
        BOOST_OUTCOME_TRY(const auto db, database_of(session, "No session"));
        if (const auto error = find_request_error(request, INDICES_COUNT)) {
            return make_error(*error, JsonErrors(logger_), session);
        }
        if (request.config_type != ConfigurationType::Candidate) {
            return make_error(Json_errors::wrong_config_type, JsonErrors(logger_), session);
        }
        const auto range = IndexRange<INDICES_COUNT>::from_strings(request.indices);
        if (!range) {
            return make_error(Json_errors::cannot_parse, JsonErrors(logger_), session);
        }
        BOOST_OUTCOME_TRY(range.value().for_each([&](const auto& index) {
            auto indices = database_indices(index);
            return core::call_c_api(*logger_, [&] { return reset_(db->handle(), db->context(), indices.data()); });
        }));
        return Response::make_success_response(session, logger_);
    }

    /// `errors` and one more, of `code`, as a response.
    core::Result<Response> make_error(Json_errors code, JsonErrors errors,
                                      const std::shared_ptr<Session>& session) const {
        errors.add_error(JsonError(code, "delete", logger_));
        return Response::make_error_response(session, errors, logger_);
    }

private:
    std::shared_ptr<core::ILogger> logger_;
    Reset reset_;
};

} // namespace xpon::api_service
