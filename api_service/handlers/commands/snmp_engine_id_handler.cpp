#include "api_service/handlers/commands/snmp_engine_id_handler.hpp"

#include "api_service/handlers/record_fields.hpp"
#include "api_service/protocol/json_building.hpp"

namespace xpon::api_service {
namespace {

constexpr Shape engine_id{.form = Shape::Form::text, .min = 10, .max = 64, .pattern = "^([0-9a-f]{2})*$"};

} // namespace

constinit const RouteShape GenerateSnmpEngineIDHandler::shape{.answer = &engine_id};

Result<Response> GenerateSnmpEngineIDHandler::operator()(const Request&,
                                                         const std::shared_ptr<Session>& session) const {
    BOOST_OUTCOME_TRY(check_session(session));
    return answer_with_data(session, [&]() -> Result<JsonTree> {
        Snmp_environment_data environment{};
        BOOST_OUTCOME_TRY(call_peers(custom_layer__generating_engine_id, &environment));
        return serialize_payload(environment);
    });
}

Result<JsonTree> GenerateSnmpEngineIDHandler::serialize_payload(const Snmp_environment_data& environment) {
    return create_cjson_from_value(device_text(environment.engine_id));
}

} // namespace xpon::api_service
