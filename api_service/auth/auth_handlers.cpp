#include "api_service/auth/auth_handlers.hpp"

#include "api_service/auth/secret_wiping.hpp"
#include "api_service/protocol/json_building.hpp"
#include "xpon/core/guard.hpp"

namespace xpon::api_service {
namespace {

constexpr const char* privileges[] = {"viewer", "operator", "administrator"};
constexpr Member credentials_members[] = {{"user", &shapes::text}, {"password", &shapes::text}};
constexpr Member session_members[] = {{"session_id", &shapes::text}, {"web_privilege", &text_among<privileges>}};

PrivilegeLevel privilege_of(const cfgdb::User_record& user) {
    constexpr auto highest = static_cast<std::uint8_t>(PrivilegeLevel::Administrator);
    return user.web_privilege <= highest ? static_cast<PrivilegeLevel>(user.web_privilege) : PrivilegeLevel::Nothing;
}

} // namespace

constinit const RouteShape AuthHandler::shape{.request = &object_of<credentials_members>,
                                              .answer = &object_of<session_members>};

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

AuthHandler::AuthHandler(const std::shared_ptr<ILogger>& logger, const std::shared_ptr<SessionManager>& session_manager,
                         const std::shared_ptr<IPamApi>& pam)
    : logger_(logger), session_manager_(session_manager), pam_(pam) {}

Result<std::shared_ptr<Session>> AuthHandler::create_session(const Request& request) const {
    return core::guarded(*logger_, [&] { return open_session(request); }, core::exception_text_unpadded);
}

Result<std::shared_ptr<Session>> AuthHandler::open_session(const Request& request) const {
    BOOST_OUTCOME_TRY(auto credentials, AuthRequestPayload::from_payload(request.data));
    const WipeAtExit wipe(credentials.password);
    BOOST_OUTCOME_TRY(const auto pam_session, pam_->open_session(credentials.user, credentials.password));
    BOOST_OUTCOME_TRY(auto session, session_manager_->new_session(pam_session));
    const auto user = core::guarded(*logger_, [&] { return session->cfgdb->find_user_by_username(credentials.user); });
    if (!user) {
        BOOST_OUTCOME_TRY(session_manager_->close_session(session->id));
        return user.error();
    }
    session->privilege = privilege_of(user.value());
    return session;
}

Response AuthHandler::refuse(const char* reason) const {
    JsonError error(Json_errors::access_denied, "auth", logger_);
    error.add_param(reason);
    return Response::make_error_response(nullptr, error, logger_);
}

Result<Response> AuthHandler::operator()(const Request& request, const std::shared_ptr<Session>&) const {
    const auto created = create_session(request);
    if (!created && created.error().code == Error::NoAccess) {
        log_error(*logger_, "Invalid credentials");
        return refuse("InvalidCredentials");
    }
    if (!created && created.error().code == Error::InvalidInputArg) {
        log_error(*logger_, "Unable to parse payload");
        return Response::make_error_response(nullptr, JsonError(Json_errors::cannot_parse, "auth", logger_), logger_);
    }
    if (!created) {
        log_error(*logger_, "Unable to create session: {}", created.error().to_string());
        return created.error();
    }
    const auto& opened = created.value();
    if (opened == nullptr) {
        log_error(*logger_, no_session_text);
        return ErrorPayload(Error::CommonError);
    }
    if (opened->privilege == PrivilegeLevel::Nothing) {
        log_error(*logger_, "Web privilege not set");
        BOOST_OUTCOME_TRY(session_manager_->close_session(opened->id));
        return refuse("PrivilegeNotSet");
    }
    auto payload = core::guarded(*logger_, [&] {
        return AuthResponsePayload{.session_id = opened->id, .privilege = opened->privilege}.make_payload();
    });
    if (!payload) {
        log_error(*logger_, "Unable create payload");
        BOOST_OUTCOME_TRY(session_manager_->close_session(opened->id));
        return payload.error();
    }
    auto response = Response::make_success_response(opened, logger_);
    response.payload = std::move(payload).value();
    return response;
}

UnauthHandler::UnauthHandler(const std::shared_ptr<ILogger>& logger,
                             const std::shared_ptr<SessionManager>& session_manager)
    : logger_(logger), session_manager_(session_manager) {}

Result<Response> UnauthHandler::operator()(const Request&, const std::shared_ptr<Session>& session) const {
    const auto close = [&]() -> Result<Response> {
        if (session == nullptr) {
            log_error(*logger_, no_session_text);
            return ErrorPayload(Error::InvalidInputArg);
        }
        BOOST_OUTCOME_TRY(session_manager_->close_session(session->id));
        return Response::make_success_response(session, logger_);
    };
    return core::guarded(*logger_, close, core::exception_text_unpadded);
}

} // namespace xpon::api_service
