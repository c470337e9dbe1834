#include "xpon/client/message.hpp"

#include <fmt/format.h>

namespace xpon::client {
namespace {

using core::Error;
using core::ErrorPayload;
using core::Result;

ErrorPayload out_of_memory() {
    return {Error::CommonError, "Out of memory"};
}

ErrorPayload no_answer(std::string_view why) {
    return {Error::InvalidState, fmt::format("Not an answer of the daemon: {}", why)};
}

std::string string_member(const cJSON* object, const char* key) {
    const char* text = cJSON_GetStringValue(cJSON_GetObjectItemCaseSensitive(object, key));
    return text == nullptr ? "" : text;
}

std::string print_param(const cJSON* param) {
    if (const char* text = cJSON_GetStringValue(param)) {
        return text;
    }
    const core::JsonText printed(cJSON_PrintUnformatted(param));
    return printed ? printed.get() : "";
}

AnswerError parse_error(const cJSON* object) {
    const cJSON* message = cJSON_GetObjectItemCaseSensitive(object, "message");
    AnswerError error{.text = string_member(message, "key"), .params = {}, .path = string_member(object, "path")};
    const cJSON* param = nullptr;
    cJSON_ArrayForEach(param, cJSON_GetObjectItemCaseSensitive(message, "params")) {
        error.params.push_back(print_param(param));
    }
    return error;
}

} // namespace

std::string AnswerError::message() const {
    std::string filled = text;
    for (std::size_t i = 0; i < params.size(); ++i) {
        const auto placeholder = fmt::format("{{p{}}}", i);
        if (const auto at = filled.find(placeholder); at != std::string::npos) {
            filled.replace(at, placeholder.size(), params[i]);
        } else {
            filled += fmt::format(" ({})", params[i]);
        }
    }
    return filled;
}

bool Answer::session_is_unknown() const {
    // Who is known and may not gets the same error, but in the name of a session.
    return !success && session_id.empty() && errors.size() == 1 && errors.front().path == "api_service" &&
           errors.front().text == "Access denied";
}

Result<std::string> print_request(const Request& request, const std::string& session_id) {
    const Json tree(cJSON_CreateObject());
    bool complete = tree != nullptr;
    const auto add_text = [&](const char* key, const std::string& text) {
        complete = complete && cJSON_AddStringToObject(tree.get(), key, text.c_str()) != nullptr;
    };
    if (!session_id.empty()) {
        add_text("session_id", session_id);
    }
    add_text("path", request.path);
    add_text("method", request.method);
    if (!request.indices.empty()) {
        cJSON* indices = cJSON_AddArrayToObject(tree.get(), "indices"); // owned by the tree
        for (const auto& level : request.indices) {
            complete = complete && cJSON_AddItemToArray(indices, cJSON_CreateString(level.c_str())) != 0;
        }
    }
    if (request.config_type) {
        add_text("config_type", *request.config_type);
    }
    if (request.data) {
        // By reference: the data stays with the request.
        complete = complete && cJSON_AddItemReferenceToObject(tree.get(), "data", request.data.get()) != 0;
    }
    const core::JsonText text(complete ? cJSON_PrintUnformatted(tree.get()) : nullptr);
    if (!text) {
        return out_of_memory();
    }
    return std::string(text.get());
}

Result<Answer> parse_answer(const std::string& text) {
    const Json tree(cJSON_ParseWithLength(text.data(), text.size()));
    if (!cJSON_IsObject(tree.get())) {
        return no_answer("no JSON object");
    }
    const cJSON* success = cJSON_GetObjectItemCaseSensitive(tree.get(), "success");
    const cJSON* session_id = cJSON_GetObjectItemCaseSensitive(tree.get(), "session_id");
    if (!cJSON_IsBool(success) || !cJSON_IsString(session_id)) {
        return no_answer("\"success\" or \"session_id\" is missing");
    }
    Answer answer;
    answer.success = cJSON_IsTrue(success) != 0;
    answer.session_id = cJSON_GetStringValue(session_id);
    answer.data.reset(cJSON_DetachItemFromObjectCaseSensitive(tree.get(), "data"));
    const cJSON* error = nullptr;
    cJSON_ArrayForEach(error, cJSON_GetObjectItemCaseSensitive(tree.get(), "errors")) {
        answer.errors.push_back(parse_error(error));
    }
    return answer;
}

} // namespace xpon::client
