#include "api_service/protocol/json_error.hpp"

#include "api_service/protocol/json_building.hpp"
#include "xpon/core/c_status.hpp"
#include "xpon/core/guard.hpp"

#include <type_traits>

namespace xpon::api_service {
namespace {

/// What a step made; its failure is told by the name of the library's function, whatever the step consists of here.
template <class T>
Result<T> made_by(const char* function, Result<T> made) {
    if (!made) {
        return ErrorPayload(Error::CommonError, fmt::format("{}() failed {}", function, cjson_error_position()));
    }
    return made;
}

Result<void> add_string(cJSON* object, const char* key, const std::string& value) {
    return made_by("cJSON_AddStringToObject", set_object_item(object, key, value));
}

Result<cJSON*> add_object(cJSON* object, const char* key) {
    BOOST_OUTCOME_TRY(auto added, made_by("cJSON_CreateObject", create_object()));
    cJSON* const borrowed = added.get();
    BOOST_OUTCOME_TRY(made_by("cJSON_AddItemToObject", add_to_object(object, key, std::move(added))));
    return borrowed;
}

Result<void> add_param_of(cJSON* params, const char* key, const JsonError::Param& param) {
    return std::visit(
        [&]<class T>(const T& value) -> Result<void> {
            if constexpr (std::is_same_v<T, std::string>) {
                return add_string(params, key, value);
            } else if constexpr (sizeof(T) == sizeof(std::int64_t) && std::is_integral_v<T>) {
                return add_string(params, key, std::to_string(value));
            } else {
                return made_by("cJSON_AddItemToObject", set_object_item(params, key, static_cast<double>(value)));
            }
        },
        param);
}

} // namespace

JsonError::JsonError(Json_errors index, std::string path, const std::shared_ptr<ILogger>& logger)
    : index_(index), path_(std::move(path)), logger_(logger) {}

void JsonError::add_param(Param param) {
    params_.push_back(std::move(param));
}

Result<std::string> JsonError::json_error_index_to_str() const {
    const char* text = nullptr;
    const auto found = core::call_c_api(*logger_, [&] { return get_json_errors_from_index(index_, &text); });
    if (!found) {
        log_error(*logger_, "get_json_errors_from_index() failed {}", static_cast<unsigned>(index_));
        return found.error();
    }
    return std::string(text);
}

Result<cJSON*> JsonError::get_cjson() const {
    return core::guarded(*logger_, [this]() -> Result<cJSON*> {
        BOOST_OUTCOME_TRY(const auto text, json_error_index_to_str());
        const auto build = [&]() -> Result<JsonTree> {
            BOOST_OUTCOME_TRY(auto error, made_by("cJSON_CreateObject", create_object()));
            BOOST_OUTCOME_TRY(auto* message, add_object(error.get(), "message"));
            BOOST_OUTCOME_TRY(add_string(message, "key", text));
            BOOST_OUTCOME_TRY(auto* params, add_object(message, "params"));
            for (std::size_t i = 0; i < params_.size(); ++i) {
                BOOST_OUTCOME_TRY(add_param_of(params, fmt::format("p{}", i).c_str(), params_[i]));
            }
            BOOST_OUTCOME_TRY(add_string(error.get(), "path", path_));
            return error;
        };
        auto error = build();
        if (!error) {
            log_error(*logger_, "{}", error.error().info->message);
            return error.error();
        }
        return error.value().release();
    });
}

} // namespace xpon::api_service
