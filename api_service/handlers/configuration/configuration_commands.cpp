#include "api_service/handlers/configuration/configuration_commands.hpp"

#include "xpon/custom_layer/configuration.h"

#include <string>
#include <string_view>

namespace xpon::api_service {
namespace {

constexpr const char* saved_configuration = "/configuration/save-config";

struct Refusal {
    std::string path;
    std::string text;
};

/// The database writes a refusal as "PATH: TEXT"; paths hold no blank.
Refusal split_refusal(std::string_view message) {
    constexpr std::string_view separator = ": ";
    const auto end_of_path = message.find(separator);
    if (end_of_path == std::string_view::npos || message.substr(0, end_of_path).find(' ') != std::string_view::npos) {
        return {.path = "configuration", .text = std::string(message)};
    }
    return {.path = std::string(message.substr(0, end_of_path)),
            .text = std::string(message.substr(end_of_path + separator.size()))};
}

} // namespace

Result<Response> CommitHandler::operator()(const Request&, const std::shared_ptr<Session>& session) const {
    BOOST_OUTCOME_TRY(const auto db, database_of(session));
    const auto committed = core::guarded(*logger_, [&] { return db->commit(ipc_); });
    if (!committed && committed.error().code == Error::Exception) {
        return committed.error();
    }
    auto response = Response::make_success_response(session, logger_);
    if (!committed && committed.error().code != Error::Empty) {
        response.errors.add_error(describe_refusal(committed.error()));
    }
    return response;
}

JsonError CommitHandler::describe_refusal(const ErrorPayload& error) const {
    Refusal refusal{.path = "configuration", .text = "Unknown Error"};
    if (!error.info) {
        log_error(*logger_, "Error without info");
    } else {
        if (!error.info->message.empty()) {
            refusal = split_refusal(error.info->message);
        }
        log_error(*logger_, "Error: {}, Path: {}", refusal.text, refusal.path);
    }
    JsonError described(Json_errors::commit_failed, refusal.path, logger_);
    described.add_param(refusal.text);
    return described;
}

Result<Response> RollbackHandler::operator()(const Request&, const std::shared_ptr<Session>& session) const {
    BOOST_OUTCOME_TRY(const auto db, database_of(session));
    BOOST_OUTCOME_TRY(db->rollback());
    return Response::make_success_response(session, logger_);
}

Result<Response> ConfigurationSaveHandler::operator()(const Request&, const std::shared_ptr<Session>& session) const {
    BOOST_OUTCOME_TRY(const auto db, database_of(session));
    return answer_to_peer_command(session, custom_layer__configuration_save, db->handle(), db->context(),
                                  saved_configuration);
}

Result<Response> ConfigurationSetDefaultHandler::operator()(const Request&,
                                                            const std::shared_ptr<Session>& session) const {
    BOOST_OUTCOME_TRY(const auto db, database_of(session));
    return answer_to_command(session, custom_layer__configuration_set_default, db->handle(), db->context());
}

} // namespace xpon::api_service
