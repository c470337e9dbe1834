#include "api_service/auth/pam_session.hpp"

#include "api_service/auth/secret_wiping.hpp"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>

namespace xpon::api_service {

PamSession::PamSession(const std::shared_ptr<ILogger>& logger)
    : logger_(logger), conversation_{.conv = &PamSession::converse, .appdata_ptr = this} {}

PamSession::~PamSession() {
    if (handle_ == nullptr) {
        return;
    }
    try {
        // The two texts are known to log readers as they stand, "%d" included.
        if (pam_close_session(handle_, 0) != PAM_SUCCESS) {
            log_error(*logger_, "pam_close_session() failed: %d");
        }
        if (pam_end(handle_, 0) != PAM_SUCCESS) {
            log_error(*logger_, "pam_end() failed: %d");
        }
    } catch (const std::exception& exception) {
        std::fprintf(stderr, "Exception in pam session destructor: %s\n", exception.what());
    } catch (...) {
        std::fputs("Unknown exception in pam session destructor\n", stderr);
    }
}

Result<void> PamSession::open_session(const std::string& user, const std::string& password) {
    password_ = password;
    const WipeAtExit wipe(password_);

    BOOST_OUTCOME_TRY(start(user));
    const int authenticated = pam_authenticate(handle_, 0);
    // Releases of libpam free their copies as they are, where the compiler found that nobody reads them any more.
    wipe_freed_copies(password.size() + 1);
    if (authenticated != PAM_SUCCESS) {
        log_error(*logger_, "pam_authenticate() failed: {}", authenticated);
        return ErrorPayload(Error::NoAccess, "Invalid credentials");
    }
    if (const int status = pam_open_session(handle_, 0); status != PAM_SUCCESS) {
        log_error(*logger_, "pam_open_session() failed: {}", status);
        return ErrorPayload(Error::CommonError);
    }
    return core::success();
}

Result<void> PamSession::start(const std::string& user) {
    const int status = pam_start("api_service", user.c_str(), &conversation_, &handle_);
    if (status != PAM_SUCCESS) {
        handle_ = nullptr;
        log_error(*logger_, "pam_start() failed: {}", status);
        return ErrorPayload(Error::CommonError);
    }
    return core::success();
}

int PamSession::converse(int message_count, const pam_message**, pam_response** responses, void* session) {
    if (session == nullptr) {
        return PAM_ABORT;
    }
    return static_cast<const PamSession*>(session)->answer(message_count, responses);
}

int PamSession::answer(int message_count, pam_response** responses) const {
    if (message_count != 1) {
        log_error(*logger_, "Num_msg is {}, should be 1", message_count);
        return PAM_CONV_ERR;
    }
    // PAM wipes and frees what it is given: both blocks come from calloc.
    auto* const text = static_cast<char*>(std::calloc(password_.size() + 1, 1));
    auto* const response = static_cast<pam_response*>(std::calloc(1, sizeof(pam_response)));
    if (text == nullptr || response == nullptr) {
        std::free(text);
        std::free(response);
        log_error(*logger_, "calloc() failed");
        return PAM_CONV_ERR;
    }
    std::memcpy(text, password_.data(), password_.size());
    response->resp = text;
    *responses = response;
    return PAM_SUCCESS;
}

std::chrono::steady_clock::time_point PamSession::get_timestamp() const {
    return timestamp_;
}

void PamSession::set_timestamp(const std::chrono::steady_clock::time_point& timestamp) {
    timestamp_ = timestamp;
}

PamApi::PamApi(const std::shared_ptr<ILogger>& logger) : logger_(logger) {}

Result<std::shared_ptr<IPamSession>> PamApi::open_session(const std::string& user, const std::string& password) {
    auto session = std::make_shared<PamSession>(logger_);
    BOOST_OUTCOME_TRY(session->open_session(user, password));
    return session;
}

} // namespace xpon::api_service
