#include "api_service/handlers/commands/snmp_engine_id_handler.hpp"

#include "api_service/handlers/answer.hpp"
#include "api_service/handlers/record_fields.hpp"
#include "api_service/handlers/session_checks.hpp"
#include "xpon/core/c_status.hpp"

namespace xpon::api_service {

using core::JsonTree;
using core::Result;

GenerateSnmpEngineIDHandler::GenerateSnmpEngineIDHandler(const std::shared_ptr<core::ILogger>& logger,
                                                         const std::shared_ptr<ipc::IIpc>& ipc)
    : logger_(logger), ipc_(ipc) {}

Result<Response> GenerateSnmpEngineIDHandler::operator()(const Request&,
                                                         const std::shared_ptr<Session>& session) const {
    return answer_with_data(session, logger_, [&]() -> Result<JsonTree> {
        BOOST_OUTCOME_TRY(check_session(session, "No session"));
        Snmp_environment_data environment{};
        BOOST_OUTCOME_TRY(
            core::call_c_api(*logger_, [&] { return custom_layer__generating_engine_id(ipc_->raw(), &environment); }));
        return serialize_payload(environment);
    });
}

Result<JsonTree> GenerateSnmpEngineIDHandler::serialize_payload(const Snmp_environment_data& environment) {
    return create_field_value(environment.engine_id);
}

} // namespace xpon::api_service
