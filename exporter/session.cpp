#include "exporter/session.hpp"

#include "exporter/password_file.hpp"

#include <utility>

#include <fmt/format.h>

namespace xpon::exporter {

using client::Answer;
using core::Error;
using core::ErrorPayload;

namespace {

std::string message_of(const ErrorPayload& error) {
    return error.info ? error.info->message : error.to_string();
}

std::string reasons_of(const Answer& answer) {
    std::string text;
    for (const auto& error : answer.errors) {
        text += fmt::format("{}{}: {}", text.empty() ? "" : "; ", error.path, error.message());
    }
    return text.empty() ? "refused without a reason" : text;
}

} // namespace

std::string_view to_string(Outcome outcome) {
    switch (outcome) {
    case Outcome::success:
        return "success";
    case Outcome::refused:
        return "refused";
    case Outcome::timed_out:
        return "timed_out";
    case Outcome::unreachable:
        return "unreachable";
    case Outcome::skipped:
        break;
    }
    return "skipped";
}

Session::Session(std::uint16_t port, Account account, std::chrono::milliseconds patience,
                 std::chrono::seconds login_pause)
    : endpoint_(client::TcpEndpoint{port}), account_(std::move(account)), patience_(patience),
      login_pause_(login_pause) {}

Session::~Session() {
    if (client_ && !session_id_.empty()) {
        static_cast<void>(client_->log_out()); // a daemon that is gone has ended the session itself
    }
}

Reply Session::request(const client::Request& request) {
    auto reply = ask(request);
    const bool has_lost_session = reply.outcome == Outcome::refused && session_id_.empty();
    return reply.outcome == Outcome::unreachable || has_lost_session ? ask(request) : std::move(reply);
}

Reply Session::ask(const client::Request& request) {
    if (!client_) {
        auto connected = client::Client::connect(endpoint_, patience_);
        if (!connected) {
            return {.outcome = Outcome::unreachable, .reason = message_of(connected.error())};
        }
        client_ = std::move(connected).value();
        client_->set_session_id(session_id_);
    }
    if (session_id_.empty()) {
        if (auto login = log_in(); login.outcome != Outcome::success) {
            return login;
        }
    }
    auto answered = client_->request(request);
    if (!answered) {
        return lose_connection(answered.error());
    }
    auto& answer = answered.value();
    if (answer.session_is_unknown()) {
        session_id_.clear();
        client_->set_session_id({});
    }
    if (!answer.is_good()) {
        return {.outcome = Outcome::refused, .reason = reasons_of(answer)};
    }
    return {.outcome = Outcome::success, .data = std::move(answer.data)};
}

Reply Session::log_in() {
    auto password = read_password_file(account_.password_file);
    if (!password) {
        return {.outcome = Outcome::skipped, .reason = message_of(password.error())};
    }
    if (std::chrono::steady_clock::now() < next_login_ && password.value() == refused_password_) {
        return {.outcome = Outcome::skipped, .reason = refusal_};
    }
    auto answered = client_->log_in(account_.user, password.value());
    Reply reply;
    if (!answered) {
        reply = lose_connection(answered.error());
    } else if (!answered.value().is_good() || client_->session_id().empty()) {
        refused_password_ = std::move(password).value();
        refusal_ = fmt::format("the login of '{}' was refused: {}", account_.user, reasons_of(answered.value()));
        next_login_ = std::chrono::steady_clock::now() + login_pause_;
        reply = {.outcome = Outcome::skipped, .reason = refusal_};
    } else {
        session_id_ = client_->session_id();
        next_login_ = {};
        reply.outcome = Outcome::success;
    }
    ++logins_[reply.outcome == Outcome::skipped ? Outcome::refused : reply.outcome];
    return reply;
}

Reply Session::lose_connection(const ErrorPayload& error) {
    client_.reset();
    if (error.code == Error::Overflow) {
        return {.outcome = Outcome::timed_out, .reason = message_of(error)};
    }
    // A daemon that was restarted counts its sessions from 1 again: the id may be somebody else's by now.
    session_id_.clear();
    return {.outcome = Outcome::unreachable, .reason = message_of(error)};
}

} // namespace xpon::exporter
