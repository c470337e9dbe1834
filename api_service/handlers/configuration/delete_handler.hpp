#pragma once

#include "api_service/handlers/configuration/addressed_records.hpp"
#include "api_service/handlers/handler_frame.hpp"
#include "xpon/core/call_sequence.hpp"

#include <cstddef>
#include <functional>
#include <memory>
#include <utility>

namespace xpon::api_service {

/// Returns every record that the request addresses to its initial state in the candidate configuration.
template <std::size_t INDICES_COUNT>
class ConfigurationDeleteHandler : HandlerFrame {
public:
    using Reset = std::function<int(const void* db, int context, unsigned short* indices)>;

    ConfigurationDeleteHandler(std::shared_ptr<ILogger> logger, Reset reset)
        : HandlerFrame(std::move(logger)), reset_(std::move(reset)) {}

    Result<Response> operator()(const Request& request, const std::shared_ptr<Session>& session) const {
        BOOST_OUTCOME_TRY(const auto db, database_of(session));
        const auto addressed = addressed_records<INDICES_COUNT>(request, ConfigurationType::Candidate);
        if (const auto* fault = std::get_if<Json_errors>(&addressed)) {
            return make_error(*fault, JsonErrors(logger_), session);
        }
        BOOST_OUTCOME_TRY(core::in_sequence(*logger_, [&] {
            return std::get<IndexRange<INDICES_COUNT>>(addressed).for_each([&](const auto& index) {
                auto indices = database_indices(index);
                return core::call_c_api(*logger_, reset_, db->handle(), db->context(), indices.data());
            });
        }));
        return Response::make_success_response(session, logger_);
    }

    /// `errors` and one more, of `code`, as a response.
    Result<Response> make_error(Json_errors code, JsonErrors errors, const std::shared_ptr<Session>& session) const {
        errors.add_error(JsonError(code, "delete", logger_));
        return Response::make_error_response(session, errors, logger_);
    }

private:
    Reset reset_;
};

} // namespace xpon::api_service
