#include "api_service/auth/pam_api.hpp"

#include "api_service/auth/pam_session.hpp"

namespace xpon::api_service {

PamApi::PamApi(const std::shared_ptr<core::ILogger>& logger) : logger_(logger) {}

core::Result<std::shared_ptr<IPamSession>> PamApi::open_session(const std::string& user, const std::string& password) {
    auto session = std::make_shared<PamSession>(logger_);
    BOOST_OUTCOME_TRY(session->open_session(user, password));
    return session;
}

} // namespace xpon::api_service
