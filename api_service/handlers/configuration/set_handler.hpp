#pragma once

#include "api_service/handlers/configuration/request_checks.hpp"
#include "api_service/handlers/session_checks.hpp"
#include "xpon/core/c_status.hpp"
#include "xpon/core/guard.hpp"
#include "xpon/core/json_tree.hpp"

#include <cstddef>
#include <functional>
#include <memory>
#include <utility>

namespace xpon::api_service {

/// Writes one record, made from the request's data alone, to every index that the request addresses in the
/// candidate configuration.
template <class TConfigElement, std::size_t INDICES_COUNT>
class ConfigurationSetHandler {
public:
    using Range = IndexRange<INDICES_COUNT>;
    using Writer =
        std::function<int(const void* db, int context, const TConfigElement* record, const unsigned short* indices)>;
    using Deserializer = std::function<int(const cJSON* data, TConfigElement* out, cJSON** errors)>;

    ConfigurationSetHandler(std::shared_ptr<core::ILogger> logger, Writer writer, Deserializer deserializer)
        : logger_(std::move(logger)), writer_(std::move(writer)), deserializer_(std::move(deserializer)) {}

    core::Result<Response> operator()(const Request& request, const std::shared_ptr<Session>& session) const {
        BOOST_OUTCOME_TRY(const auto db, database_of(session, "No session"));
        if (const auto error = find_request_error(request, INDICES_COUNT)) {
            return make_request_error(*error, "set", session, logger_);
        }
        const auto range = Range::from_strings(request.indices);
        if (!range) {
            return make_request_error(Json_errors::cannot_parse, "set", session, logger_);
        }
        BOOST_OUTCOME_TRY(const auto field_errors, core::guarded(*logger_, [&] {
                              return set_config_element_by_payload(db, range.value(), *request.config_type,
                                                                   request.data);
                          }));
        if (field_errors == nullptr) {
            return Response::make_success_response(session, logger_);
        }
        JsonErrors errors(logger_);
        BOOST_OUTCOME_TRY(errors.add_errors_from_cjson(field_errors.get()));
        return Response::make_error_response(session, errors, logger_);
    }

    /// The field errors of the data, or an empty tree after all records were written. Field errors come before the
    /// check of the configuration type. After a failed write the records before it stay written.
    core::Result<core::JsonTree> set_config_element_by_payload(const std::shared_ptr<cfgdb::CfgDbWrapper>& db,
                                                               const Range& range, ConfigurationType type,
                                                               const Payload& payload) const {
        TConfigElement record{};
        cJSON* reported = nullptr;
        const auto status =
            core::call_c_api(*logger_, [&] { return deserializer_(payload.get(), &record, &reported); });
        core::JsonTree field_errors(reported);
        BOOST_OUTCOME_TRY(status);
        if (field_errors != nullptr) {
            return field_errors;
        }
        if (type != ConfigurationType::Candidate) {
            return core::ErrorPayload(core::Error::InvalidInputArg, "Invalid configuration type");
        }
        BOOST_OUTCOME_TRY(range.for_each([&](const typename Range::Element& index) {
            const auto indices = database_indices(index);
            return core::call_c_api(*logger_,
                                    [&] { return writer_(db->handle(), db->context(), &record, indices.data()); });
        }));
        return core::JsonTree();
    }

private:
    std::shared_ptr<core::ILogger> logger_;
    Writer writer_;
    Deserializer deserializer_;
};

} // namespace xpon::api_service
