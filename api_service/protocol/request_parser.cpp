#include "api_service/protocol/request_parser.hpp"

#include "api_service/protocol/json_building.hpp"
#include "api_service/protocol/json_writer.hpp"
#include "xpon/core/guard.hpp"

#include <cstring>
#include <memory>

namespace xpon::api_service {
namespace {

/// The library's texts end with a NUL: behind an escaped one they would be cut in silence.
bool has_escaped_nul(std::string_view json) {
    for (auto at = json.find('\\'); at != std::string_view::npos; at = json.find('\\', at + 2)) {
        if (json.substr(at + 1, 5) == "u0000") {
            return true;
        }
    }
    return false;
}

/// Overwrites every text of the tree and its siblings.
void wipe_texts(cJSON* tree) {
    for (; tree != nullptr; tree = tree->next) {
        if (tree->valuestring != nullptr) {
            explicit_bzero(tree->valuestring, std::strlen(tree->valuestring));
        }
        wipe_texts(tree->child);
    }
}

/// A client's texts may be passwords: no copy of them stays behind in freed memory.
struct RequestDeleter {
    void operator()(cJSON* tree) const {
        wipe_texts(tree);
        cJSON_Delete(tree);
    }
};
using RequestTree = std::unique_ptr<cJSON, RequestDeleter>;

Result<RequestTree> parse_json(const std::string& text) {
    if (has_escaped_nul(text)) {
        return ErrorPayload(Error::InvalidInputArg, "The request holds an escaped NUL");
    }
    RequestTree tree(cJSON_Parse(text.c_str()));
    if (tree == nullptr) {
        // cJSON remembers where it stopped, inside a text that is about to be freed. Parsing something that
        // lives for ever makes it forget.
        const JsonTree lasting(cJSON_Parse("0"));
        return ErrorPayload(Error::CommonError, "cJSON_Parse() failed");
    }
    return tree;
}

Result<std::string> string_of(const cJSON* item, std::string_view name) {
    if (cJSON_IsString(item) == 0) {
        return ErrorPayload(Error::CommonError, fmt::format("failed for {} (cJSON_IsString failed)", name));
    }
    if (item->valuestring == nullptr) {
        return ErrorPayload(Error::CommonError, fmt::format("failed for {} (string is null)", name));
    }
    return std::string(item->valuestring);
}

Result<std::optional<ConfigurationType>> read_config_type(cJSON* object) {
    const auto text = get_maybe_string(object, "config_type");
    if (!text) {
        return std::nullopt;
    }
    if (*text == "candidate") {
        return ConfigurationType::Candidate;
    }
    if (*text == "running") {
        return ConfigurationType::Running;
    }
    return ErrorPayload(Error::CommonError, fmt::format("Invalid config type: {}", *text));
}

Result<void> write_data(JsonWriter& answer, Payload& data) {
    if (data.is_text()) {
        answer.raw(data.take_text());
        return core::success();
    }
    return write_tree(answer, data.get());
}

Result<void> write_answer(JsonWriter& answer, Response& response) {
    answer.begin_object();
    answer.key("success");
    answer.boolean(response.success);
    answer.key("session_id");
    answer.text(response.session_id);
    if (!response.payload.empty()) {
        answer.key("data");
        BOOST_OUTCOME_TRY(write_data(answer, response.payload));
    }
    if (!response.errors.empty()) {
        BOOST_OUTCOME_TRY(const auto errors, create_array());
        if (!response.errors.copy_errors_to_cjson_array(errors.get())) {
            return ErrorPayload(Error::CommonError, "cJSON API failed");
        }
        answer.key("errors");
        BOOST_OUTCOME_TRY(write_tree(answer, errors.get()));
    }
    answer.end_object();
    return core::success();
}

} // namespace

RequestParser::RequestParser(const std::shared_ptr<ILogger>& logger) : logger_(logger) {}

Result<std::string> RequestParser::get_string(cJSON* object, const std::string& key) const {
    const cJSON* item = cJSON_GetObjectItemCaseSensitive(object, key.c_str());
    if (item == nullptr) {
        return ErrorPayload(Error::CommonError, "cJSON_GetObjectItemCaseSensitive() failed");
    }
    return string_of(item, key);
}

std::optional<std::string> get_maybe_string(cJSON* object, std::string_view key) {
    const char* text = cJSON_GetStringValue(cJSON_GetObjectItemCaseSensitive(object, std::string(key).c_str()));
    return text == nullptr ? std::nullopt : std::optional<std::string>(text);
}

Result<std::vector<std::string>> RequestParser::get_indices(const cJSON* object) const {
    std::vector<std::string> indices;
    const cJSON* array = cJSON_GetObjectItemCaseSensitive(object, "indices");
    if (cJSON_IsArray(array) == 0) {
        return indices;
    }
    const cJSON* item = nullptr;
    cJSON_ArrayForEach(item, array) {
        auto index = string_of(item, std::to_string(indices.size()));
        if (!index) {
            log_error(*logger_, "{}", index.error().info->message);
            return index.error();
        }
        indices.push_back(std::move(index).value());
    }
    return indices;
}

Result<Request> RequestParser::parse_request(const std::string& frame) const {
    return core::guarded(*logger_, [&]() -> Result<Request> {
        BOOST_OUTCOME_TRY(const auto tree, parse_json(frame));
        Request request;
        request.session_id = get_maybe_string(tree.get(), "session_id");
        BOOST_OUTCOME_TRY(request.path, get_string(tree.get(), "path"));
        BOOST_OUTCOME_TRY(request.method, get_string(tree.get(), "method"));
        BOOST_OUTCOME_TRY(request.indices, get_indices(tree.get()));
        BOOST_OUTCOME_TRY(request.config_type, read_config_type(tree.get()));
        cJSON* data = cJSON_GetObjectItemCaseSensitive(tree.get(), "data");
        if (data != nullptr) {
            request.data = Payload(RequestTree(cJSON_DetachItemViaPointer(tree.get(), data)));
        }
        return request;
    });
}

Result<std::string> RequestParser::make_response(Response response) const {
    return core::guarded(*logger_, [&]() -> Result<std::string> {
        JsonWriter answer;
        BOOST_OUTCOME_TRY(write_answer(answer, response));
        return std::move(answer).take();
    });
}

} // namespace xpon::api_service
