#include "api_service/auth/auth_payloads.hpp"

#include "api_service/protocol/json_building.hpp"

namespace xpon::api_service {

using core::Error;
using core::ErrorPayload;
using core::Result;

Result<AuthRequestPayload> AuthRequestPayload::from_payload(const Payload& payload) {
    const char* user = cJSON_GetStringValue(cJSON_GetObjectItemCaseSensitive(payload.get(), "user"));
    const char* password = cJSON_GetStringValue(cJSON_GetObjectItemCaseSensitive(payload.get(), "password"));
    if (user == nullptr || password == nullptr) {
        return ErrorPayload(Error::InvalidInputArg);
    }
    return AuthRequestPayload{.user = user, .password = password};
}

Result<Payload> AuthResponsePayload::make_payload() const {
    BOOST_OUTCOME_TRY(auto object, create_object());
    BOOST_OUTCOME_TRY(set_object_item(object.get(), "session_id", session_id));
    BOOST_OUTCOME_TRY(set_object_item(object.get(), "web_privilege", to_string(privilege)));
    return Payload(std::move(object));
}

} // namespace xpon::api_service
