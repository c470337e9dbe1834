#include "api_service/protocol/json_errors.hpp"

#include "api_service/protocol/json_building.hpp"

#include <cmath>
#include <limits>
#include <optional>
#include <string_view>
#include <type_traits>

namespace xpon::api_service {
namespace {

template <class T>
bool holds(double value) {
    return std::trunc(value) == value && value >= std::numeric_limits<T>::min() &&
           value <= std::numeric_limits<T>::max();
}

Result<JsonError::Param> read_param(const cJSON* param) {
    if (cJSON_IsString(param) != 0) {
        return std::string(param->valuestring);
    }
    if (cJSON_IsNumber(param) == 0) {
        return ErrorPayload(Error::InvalidInputArg, "An error's parameter is neither a number nor a string");
    }
    const double value = param->valuedouble;
    if (holds<std::int32_t>(value)) {
        return static_cast<std::int32_t>(value);
    }
    if (holds<std::uint32_t>(value)) {
        return static_cast<std::uint32_t>(value);
    }
    return value;
}

/// The index whose text this is. The library gives texts by index alone, so they are gone through.
std::optional<Json_errors> find_index(std::string_view text) {
    using Number = std::underlying_type_t<Json_errors>;
    for (unsigned number = 0; number <= std::numeric_limits<Number>::max(); ++number) {
        const auto index = static_cast<Json_errors>(number);
        const char* known = nullptr;
        if (get_json_errors_from_index(index, &known) == 0 && text == known) {
            return index;
        }
    }
    return std::nullopt;
}

Result<JsonError> read_error(const cJSON* error, const std::shared_ptr<ILogger>& logger) {
    const cJSON* message = cJSON_GetObjectItemCaseSensitive(error, "message");
    const char* text = cJSON_GetStringValue(cJSON_GetObjectItemCaseSensitive(message, "key"));
    const char* path = cJSON_GetStringValue(cJSON_GetObjectItemCaseSensitive(error, "path"));
    const auto index = text == nullptr ? std::nullopt : find_index(text);
    if (path == nullptr || !index) {
        return ErrorPayload(Error::InvalidInputArg, "Not an error object");
    }
    JsonError read(*index, path, logger);
    const cJSON* param = nullptr;
    cJSON_ArrayForEach(param, cJSON_GetObjectItemCaseSensitive(message, "params")) {
        BOOST_OUTCOME_TRY(auto value, read_param(param));
        read.add_param(std::move(value));
    }
    return read;
}

} // namespace

JsonErrors::JsonErrors(const std::shared_ptr<ILogger>& logger) : logger_(logger) {}

void JsonErrors::add_error(const JsonError& error) {
    errors_.push_back(error);
}

Result<void> JsonErrors::add_errors_from_cjson(const cJSON* errors) {
    if (errors == nullptr) {
        return ErrorPayload(Error::InvalidInputArg, "Object cannot be null");
    }
    std::vector<JsonError> read;
    const cJSON* item = nullptr;
    cJSON_ArrayForEach(item, errors) {
        BOOST_OUTCOME_TRY(auto error, read_error(item, logger_));
        read.push_back(std::move(error));
    }
    errors_.insert(errors_.end(), read.begin(), read.end());
    return core::success();
}

Result<void> JsonErrors::copy_errors_to_cjson_array(cJSON* array) const {
    if (array == nullptr) {
        return ErrorPayload(Error::InvalidInputArg, "Object cannot be null");
    }
    if (cJSON_IsArray(array) == 0) {
        return ErrorPayload(Error::InvalidInputArg, "Must be a JSON array");
    }
    for (const auto& error : errors_) {
        BOOST_OUTCOME_TRY(auto* object, error.get_cjson());
        if (!add_to_array(array, JsonTree(object))) {
            return ErrorPayload(Error::CommonError,
                                fmt::format("cJSON_AddItemToArray() failed {}", cjson_error_position()));
        }
    }
    return core::success();
}

Result<std::string> JsonErrors::get_json_string() const {
    BOOST_OUTCOME_TRY(const auto array, create_array());
    BOOST_OUTCOME_TRY(copy_errors_to_cjson_array(array.get()));
    return print_tree(array.get());
}

bool JsonErrors::empty() const {
    return errors_.empty();
}

} // namespace xpon::api_service
