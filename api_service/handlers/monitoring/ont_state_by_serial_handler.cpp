#include "api_service/handlers/monitoring/ont_state_by_serial_handler.hpp"

#include "api_service/handlers/configuration/get_handler.hpp"
#include "api_service/handlers/monitoring/ont_fields.hpp"
#include "xpon/cfgdb/element_functions.hpp"
#include "xpon/serializer/serializer.hpp"

#include <algorithm>

namespace xpon::api_service {
namespace {

Result<const cJSON*> get_serial_item(const Request& request) {
    const cJSON* serial = cJSON_GetObjectItemCaseSensitive(request.data.get(), "serial");
    if (serial == nullptr) {
        return ErrorPayload(Error::InvalidInputArg, "Object cannot be null");
    }
    if (cJSON_IsArray(serial) == 0) {
        return ErrorPayload(Error::InvalidInputArg, "Object must be a array of bytes");
    }
    return serial;
}

/// The configured ONT of this serial number, or none after the whole walk.
Result<std::optional<ConfiguredOnt>> find_configured(OntWalk& walk, const OntSerial& serial) {
    for (;;) {
        BOOST_OUTCOME_TRY(auto ont, walk.next());
        if (!ont) {
            BOOST_OUTCOME_TRY(walk.finish());
        }
        if (!ont || ont->serial == serial) {
            return ont;
        }
    }
}

Result<void> fill_configured(JsonWriter& object, const ConfiguredOnt& ont) {
    BOOST_OUTCOME_TRY(write_fields(object, ont, configured_ont_fields));
    if (ont.state != nullptr) {
        return write_fields(object, *ont.state, activated_ont_fields);
    }
    if (ont.unactivated != nullptr) {
        return write_fields(object, *ont.unactivated, unactivated_ont_fields);
    }
    return core::success();
}

Result<void> fill_unactivated(JsonWriter& object, const OntReports& reports, const OntSerial& serial) {
    const auto found = std::ranges::find_if(
        reports.unactivated(), [&](const Ont_unactivated_entry& ont) { return make_serial(ont.serial) == serial; });
    if (found == reports.unactivated().end()) {
        return core::success();
    }
    BOOST_OUTCOME_TRY(write_fields(object, *found, unactivated_ont_serial_fields));
    return write_fields(object, *found, unactivated_ont_fields);
}

constexpr Member request_members[] = {{"serial", &shapes::serial}};

/// As in the answer about states; nothing of an ONT that nobody knows.
constexpr Shape unknown_ont_shape{.form = Shape::Form::object};
constexpr Shape found_ont_shape =
    named("FoundOnt", one_of<object_of<configured_ont_fields, activated_ont_fields>,
                             object_of<configured_ont_fields, unactivated_ont_fields>, object_of<configured_ont_fields>,
                             object_of<unactivated_ont_serial_fields, unactivated_ont_fields>, unknown_ont_shape>);
constexpr Shape configuration_shape{.form = Shape::Form::element, .path = "ZebGCfg.pon.ont"};
constexpr Member answer_members[] = {
    {"monitoring", &found_ont_shape},
    {"configuration", &configuration_shape, "of an ONT that is configured", true},
};

} // namespace

constinit const RouteShape MonitoringOntStateBySerialHandler::shape{
    .request = &object_of<request_members>, .answer = &object_of<answer_members>, .takes_config_type = true};

Result<Response> MonitoringOntStateBySerialHandler::operator()(const Request& request,
                                                               const std::shared_ptr<Session>& session) const {
    BOOST_OUTCOME_TRY(const auto db, database_of(session));
    std::optional<JsonError> refusal;
    auto answered = answer_with_data(session, [&]() -> Result<std::string> {
        BOOST_OUTCOME_TRY(const auto* item, get_serial_item(request));
        const auto serial = get_serial_from_array(item);
        if (!serial) {
            log_error(*logger_, "{}", serial.error().to_string());
            log_error(*logger_, "get_serial_from_array() failed, unable to parse serial number");
            refusal.emplace(Json_errors::cannot_parse, "serial", logger_).add_param("InvalidSerial");
            return serial.error();
        }
        return serialize_payload(*db, serial.value(), request.config_type);
    });
    if (refusal) {
        return Response::make_error_response(session, *refusal, logger_);
    }
    return answered;
}

Result<std::string> MonitoringOntStateBySerialHandler::serialize_payload(const cfgdb::CfgDbWrapper& db,
                                                                         const OntSerial& serial,
                                                                         std::optional<ConfigurationType> type) const {
    BOOST_OUTCOME_TRY(const auto range, get_all_ont_range(*logger_));
    BOOST_OUTCOME_TRY(const auto reports, OntReports::get(*logger_, *this, range));
    OntWalk walk(*logger_, db, range, reports);
    BOOST_OUTCOME_TRY(const auto ont, find_configured(walk, serial));
    return write_data([&](JsonWriter& root) {
        return write_object(root, [&]() -> Result<void> {
            root.key("monitoring");
            BOOST_OUTCOME_TRY(write_object(
                root, [&] { return ont ? fill_configured(root, *ont) : fill_unactivated(root, reports, serial); }));
            return ont ? add_configuration(root, db, ont->config_index, type) : core::success();
        });
    });
}

Result<void> MonitoringOntStateBySerialHandler::add_configuration(JsonWriter& root, const cfgdb::CfgDbWrapper& db,
                                                                  unsigned short config_index,
                                                                  std::optional<ConfigurationType> type) const {
    const ConfigurationGetHandler<cfgdb::PonOnt, 1> getter(logger_, getRunDb_ZebGCfg_pon_ont, getDb_ZebGCfg_pon_ont,
                                                           serialize_PonOnt_to_json);
    BOOST_OUTCOME_TRY(auto configuration, getter.build_element(db, {config_index}, type));
    if (std::holds_alternative<JsonErrors>(configuration)) {
        return ErrorPayload(Error::InvalidState, "The ONT's configuration cannot be written as JSON");
    }
    root.key("configuration");
    return write_tree(root, std::get<JsonTree>(configuration).get());
}

} // namespace xpon::api_service
