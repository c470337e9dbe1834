#include "client/oltctl/service.hpp"

#include "client/oltctl/failure.hpp"
#include "client/oltctl/output/terminal.hpp"
#include "client/oltctl/session/password.hpp"
#include "xpon/client/fault.hpp"

#include <string_view>
#include <utility>

#include <fmt/format.h>

namespace xpon::oltctl {
namespace {

constexpr auto advice_to_log_in = "Log in: oltctl login USER";

std::string_view advice_on(client::Fault fault) {
    switch (fault) {
    case client::Fault::unreachable:
        return " Is api_service running on this machine?";
    case client::Fault::closed:
        return " What was asked may have been done.";
    case client::Fault::timed_out:
        return " What was asked may still be done; --timeout SECONDS waits longer.";
    default:
        return "";
    }
}

/// The value, or the end of the command: who does not get an answer has lost the connection.
template <class T>
T value_of(core::Result<T> result) {
    if (!result) {
        const auto& error = result.error();
        throw Failure(ExitStatus::no_connection,
                      fmt::format("{}.{}", error.info ? error.info->message : error.to_string(),
                                  advice_on(client::fault_of(error))));
    }
    return std::move(result).value();
}

std::string advice_on_errors(const client::Answer& answer) {
    for (const auto& error : answer.errors) {
        if (error.text == "Access denied" && error.path == "api_service") {
            return "\nYour privilege is too low; `oltctl whoami` tells it.";
        }
        if (error.text == "Request could not be processed") {
            return "\nThe indices may be wrong, or the device did not do it; the log of the service says why.";
        }
    }
    return "";
}

} // namespace

std::string text_of_errors(const client::Answer& answer, const std::string& what) {
    std::string text = fmt::format("{} was refused.", what);
    for (const auto& error : answer.errors) {
        text += fmt::format("\n  {}: {}", error.path, error.message());
    }
    return text + advice_on_errors(answer);
}

client::Client& Service::connected() {
    if (!client_) {
        client_ = value_of(client::Client::connect(client::TcpEndpoint{port_}, patience_));
    }
    return *client_;
}

KeptSession Service::log_in(const std::string& user, const std::string& password) {
    const auto answer = value_of(connected().log_in(user, password));
    if (!answer.is_good()) {
        const auto reason = answer.errors.empty() ? "" : answer.errors.front().message();
        const bool no_privilege = reason.find("PrivilegeNotSet") != std::string::npos;
        throw Failure(ExitStatus::no_session,
                      no_privilege
                          ? fmt::format("'{}' may not use the service: an administrator has to give the user a "
                                        "web privilege.",
                                        user)
                          : fmt::format("'{}' is not let in: user name or password are wrong.", user));
    }
    const char* const privilege =
        cJSON_GetStringValue(cJSON_GetObjectItemCaseSensitive(answer.data.get(), "web_privilege"));
    session_ = KeptSession{.id = connected().session_id(),
                           .user = user,
                           .privilege = privilege == nullptr ? "" : privilege,
                           .port = port_};
    keep_session(*session_);
    return *session_;
}

void Service::log_out() {
    const auto id = session().id; // told to log in before anything is connected to
    connected().set_session_id(id);
    const auto ended = value_of(connected().log_out());
    forget_session(port_);
    if (!ended.success && !ended.session_is_unknown()) {
        throw Failure(ExitStatus::refused, text_of_errors(ended, "Logging out"));
    }
}

const KeptSession& Service::session() {
    if (!session_) {
        session_ = read_kept_session(port_);
    }
    if (!session_) {
        throw Failure(ExitStatus::no_session, fmt::format("You are not logged in. {}", advice_to_log_in));
    }
    return *session_;
}

void Service::log_in_again() {
    const auto expired = session();
    if (!a_person_is_there()) {
        throw Failure(ExitStatus::no_session,
                      fmt::format("The session of '{}' has expired. {}", expired.user, advice_to_log_in));
    }
    client_.reset();
    before_asking_();
    log_in(expired.user,
           read_password({}, fmt::format("The session of '{0}' has expired. Password of {0}: ", expired.user)));
}

std::string Service::text_of_answer_to(const client::Request& request) {
    for (bool again = false;; again = true) {
        const auto question = value_of(client::print_request(request, session().id));
        auto exchanged = connected().exchange(question);
        if (!exchanged) {
            client_.reset(); // the next request gets a connection of its own
        }
        auto text = value_of(std::move(exchanged));
        // An answer to an unknown session is short; a long one is not taken apart twice.
        constexpr std::size_t longest_refusal = 4096;
        if (again || text.size() > longest_refusal || !value_of(client::parse_answer(text)).session_is_unknown()) {
            return text;
        }
        log_in_again();
    }
}

client::Answer Service::answer_to(const client::Request& request) {
    return value_of(client::parse_answer(text_of_answer_to(request)));
}

client::Answer Service::ask(const client::Request& request) {
    auto answer = answer_to(request);
    if (!answer.is_good()) {
        throw Failure(ExitStatus::refused, text_of_errors(answer, fmt::format("{} {}", request.method, request.path)));
    }
    return answer;
}

} // namespace xpon::oltctl
