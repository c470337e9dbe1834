#pragma once

#include "api_service/handlers/configuration/addressed_records.hpp"
#include "api_service/handlers/handler_frame.hpp"
#include "xpon/core/call_sequence.hpp"

#include <cstddef>
#include <functional>
#include <memory>
#include <utility>

namespace xpon::api_service {

/// Writes one record, made from the request's data alone, to every index that the request addresses in the
/// candidate configuration.
template <class TConfigElement, std::size_t INDICES_COUNT>
class ConfigurationSetHandler : HandlerFrame {
public:
    using Range = IndexRange<INDICES_COUNT>;
    using Writer =
        std::function<int(const void* db, int context, const TConfigElement* record, const unsigned short* indices)>;
    using Deserializer = std::function<int(const cJSON* data, TConfigElement* out, cJSON** errors)>;

    ConfigurationSetHandler(std::shared_ptr<ILogger> logger, Writer writer, Deserializer deserializer)
        : HandlerFrame(std::move(logger)), writer_(std::move(writer)), deserializer_(std::move(deserializer)) {}

    Result<Response> operator()(const Request& request, const std::shared_ptr<Session>& session) const {
        BOOST_OUTCOME_TRY(const auto db, database_of(session));
        const auto addressed = addressed_records<INDICES_COUNT>(request);
        if (const auto* fault = std::get_if<Json_errors>(&addressed)) {
            return refuse(session, *fault, "set");
        }
        BOOST_OUTCOME_TRY(const auto field_errors, core::guarded(*logger_, [&] {
                              return set_config_element_by_payload(db, std::get<Range>(addressed), *request.config_type,
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
    Result<JsonTree> set_config_element_by_payload(const std::shared_ptr<cfgdb::CfgDbWrapper>& db, const Range& range,
                                                   ConfigurationType type, const Payload& payload) const {
        TConfigElement record{};
        cJSON* reported = nullptr;
        const auto status = core::call_c_api(*logger_, deserializer_, payload.get(), &record, &reported);
        JsonTree field_errors(reported);
        BOOST_OUTCOME_TRY(status);
        if (field_errors != nullptr) {
            return field_errors;
        }
        if (type != ConfigurationType::Candidate) {
            return ErrorPayload(Error::InvalidInputArg, "Invalid configuration type");
        }
        BOOST_OUTCOME_TRY(core::in_sequence(*logger_, [&] {
            return range.for_each([&](const typename Range::Element& index) {
                const auto indices = database_indices(index);
                return core::call_c_api(*logger_, writer_, db->handle(), db->context(), &record, indices.data());
            });
        }));
        return JsonTree();
    }

private:
    Writer writer_;
    Deserializer deserializer_;
};

} // namespace xpon::api_service
