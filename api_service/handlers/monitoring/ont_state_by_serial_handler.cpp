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

Result<void> fill_configured(cJSON* object, const ConfiguredOnt& ont) {
    BOOST_OUTCOME_TRY(add_fields(object, ont, configured_ont_fields));
    if (ont.state != nullptr) {
        return add_fields(object, *ont.state, activated_ont_fields);
    }
    if (ont.unactivated != nullptr) {
        return add_fields(object, *ont.unactivated, unactivated_ont_fields);
    }
    return core::success();
}

Result<void> fill_unactivated(cJSON* object, const OntReports& reports, const OntSerial& serial) {
    const auto found = std::ranges::find_if(
        reports.unactivated(), [&](const Ont_unactivated_entry& ont) { return make_serial(ont.serial) == serial; });
    if (found == reports.unactivated().end()) {
        return core::success();
    }
    BOOST_OUTCOME_TRY(add_fields(object, *found, unactivated_ont_serial_fields));
    return add_fields(object, *found, unactivated_ont_fields);
}

} // namespace

Result<Response> MonitoringOntStateBySerialHandler::operator()(const Request& request,
                                                               const std::shared_ptr<Session>& session) const {
    BOOST_OUTCOME_TRY(const auto db, database_of(session));
    std::optional<JsonError> refusal;
    auto answered = answer_with_data(session, [&]() -> Result<JsonTree> {
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

Result<JsonTree> MonitoringOntStateBySerialHandler::serialize_payload(const cfgdb::CfgDbWrapper& db,
                                                                      const OntSerial& serial,
                                                                      std::optional<ConfigurationType> type) const {
    BOOST_OUTCOME_TRY(const auto range, get_all_ont_range(*logger_));
    BOOST_OUTCOME_TRY(const auto reports, OntReports::get(*logger_, ipc_, range));
    BOOST_OUTCOME_TRY(auto root, create_object());
    BOOST_OUTCOME_TRY(auto* monitoring, add_subobject(root.get(), "monitoring"));
    OntWalk walk(*logger_, db, range, reports);
    BOOST_OUTCOME_TRY(const auto ont, find_configured(walk, serial));
    if (ont) {
        BOOST_OUTCOME_TRY(fill_configured(monitoring, *ont));
        BOOST_OUTCOME_TRY(add_configuration(root.get(), db, ont->config_index, type));
    } else {
        BOOST_OUTCOME_TRY(fill_unactivated(monitoring, reports, serial));
    }
    return root;
}

Result<void> MonitoringOntStateBySerialHandler::add_configuration(cJSON* root, const cfgdb::CfgDbWrapper& db,
                                                                  unsigned short config_index,
                                                                  std::optional<ConfigurationType> type) const {
    const ConfigurationGetHandler<cfgdb::PonOnt, 1> getter(logger_, getRunDb_ZebGCfg_pon_ont, getDb_ZebGCfg_pon_ont,
                                                           serialize_PonOnt_to_json);
    BOOST_OUTCOME_TRY(auto configuration, getter.build_element(db, {config_index}, type));
    if (std::holds_alternative<JsonErrors>(configuration)) {
        return ErrorPayload(Error::InvalidState, "The ONT's configuration cannot be written as JSON");
    }
    return add_to_object(root, "configuration", std::get<JsonTree>(std::move(configuration)));
}

} // namespace xpon::api_service
