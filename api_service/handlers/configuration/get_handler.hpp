#pragma once

#include "api_service/handlers/configuration/addressed_records.hpp"
#include "api_service/handlers/handler_frame.hpp"
#include "api_service/protocol/json_building.hpp"

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <variant>

namespace xpon::api_service {

/// Reads the records that a request addresses, from the candidate or the running configuration. The data of the
/// answer is one object at depth 0, else an array of objects in index order.
template <class TConfigElement, std::size_t INDICES_COUNT>
class ConfigurationGetHandler : HandlerFrame {
public:
    using Range = IndexRange<INDICES_COUNT>;
    using RunningReader = std::function<int(const void* db, TConfigElement* out, const unsigned short* indices)>;
    using CandidateReader =
        std::function<int(const void* db, int context, TConfigElement* out, const unsigned short* indices)>;
    using Serializer = std::function<int(const TConfigElement* record, cJSON* target, cJSON** errors)>;
    using Outcome = std::variant<Payload, JsonErrors>;

    ConfigurationGetHandler(std::shared_ptr<ILogger> logger, RunningReader running_reader,
                            CandidateReader candidate_reader, Serializer serializer)
        : HandlerFrame(std::move(logger)), running_reader_(std::move(running_reader)),
          candidate_reader_(std::move(candidate_reader)), serializer_(std::move(serializer)) {}

    Result<Response> operator()(const Request& request, const std::shared_ptr<Session>& session) const {
        BOOST_OUTCOME_TRY(const auto db, database_of(session, "Session is missing"));
        const auto addressed = addressed_records<INDICES_COUNT>(request);
        if (const auto* fault = std::get_if<Json_errors>(&addressed)) {
            return refuse(session, *fault, "get");
        }
        BOOST_OUTCOME_TRY(auto outcome, core::guarded(*logger_, [&] {
                              return serialize_payload(db, std::get<Range>(addressed), *request.config_type);
                          }));
        if (const auto* errors = std::get_if<JsonErrors>(&outcome)) {
            return Response::make_error_response(session, *errors, logger_);
        }
        auto response = Response::make_success_response(session, logger_);
        response.payload = std::get<Payload>(std::move(outcome));
        return response;
    }

    /// The data for all records of `range`. Field errors of a record replace those of the records before it.
    Result<Outcome> serialize_payload(const std::shared_ptr<cfgdb::CfgDbWrapper>& db, const Range& range,
                                      ConfigurationType type) const {
        if constexpr (INDICES_COUNT == 0) {
            return serialize_config_element(db, {}, type);
        }
        JsonWriter array(data_depth);
        array.begin_array();
        std::optional<JsonErrors> field_errors;
        BOOST_OUTCOME_TRY(range.for_each([&](const typename Range::Element& index) -> Result<void> {
            BOOST_OUTCOME_TRY(auto element, build_element(*db, index, type));
            if (auto* errors = std::get_if<JsonErrors>(&element)) {
                field_errors = std::move(*errors);
                return core::success();
            }
            return write_tree(array, std::get<JsonTree>(element).get());
        }));
        if (field_errors) {
            return Outcome(std::move(*field_errors));
        }
        array.end_array();
        return Outcome(Payload(std::move(array).take()));
    }

    /// The object of one record, exactly as the serialiser makes it.
    Result<Outcome> serialize_config_element(const std::shared_ptr<cfgdb::CfgDbWrapper>& db,
                                             const typename Range::Element& index, ConfigurationType type) const {
        BOOST_OUTCOME_TRY(auto element, build_element(*db, index, type));
        if (auto* errors = std::get_if<JsonErrors>(&element)) {
            return Outcome(std::move(*errors));
        }
        return Outcome(Payload(std::get<JsonTree>(std::move(element))));
    }

    /// One record's object alone, or its field errors. Error "Invalid configuration type" without a type.
    Result<std::variant<JsonTree, JsonErrors>> build_element(const cfgdb::CfgDbWrapper& db,
                                                             const typename Range::Element& index,
                                                             std::optional<ConfigurationType> type) const {
        BOOST_OUTCOME_TRY(auto object, create_object());
        TConfigElement record{};
        BOOST_OUTCOME_TRY(read_record(db, index, type, record));
        cJSON* reported = nullptr;
        const auto status = core::call_c_api(*logger_, serializer_, &record, object.get(), &reported);
        const JsonTree errors(reported);
        BOOST_OUTCOME_TRY(status);
        if (errors == nullptr) {
            return object;
        }
        JsonErrors read(logger_);
        BOOST_OUTCOME_TRY(read.add_errors_from_cjson(errors.get()));
        return read;
    }

private:
    Result<void> read_record(const cfgdb::CfgDbWrapper& db, const typename Range::Element& index,
                             std::optional<ConfigurationType> type, TConfigElement& record) const {
        const auto indices = database_indices(index);
        if (type == ConfigurationType::Candidate) {
            return core::call_c_api(*logger_, candidate_reader_, db.handle(), db.context(), &record, indices.data());
        }
        if (type == ConfigurationType::Running) {
            return core::call_c_api(*logger_, running_reader_, db.handle(), &record, indices.data());
        }
        return ErrorPayload(Error::InvalidInputArg, "Invalid configuration type");
    }

    RunningReader running_reader_;
    CandidateReader candidate_reader_;
    Serializer serializer_;
};

} // namespace xpon::api_service
