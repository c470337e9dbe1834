#include "api_service/protocol/json_error.hpp"

#include "api_service/protocol/json_building.hpp"
#include "xpon/core/c_status.hpp"
#include "xpon/core/guard.hpp"

#include <type_traits>

namespace xpon::api_service {
namespace {

Result<void> set_param(cJSON* params, const char* key, const JsonError::Param& param) {
    return std::visit(
        [&]<class T>(const T& value) -> Result<void> {
            if constexpr (std::is_same_v<T, std::string>) {
                return set_object_item(params, key, value);
            } else if constexpr (sizeof(T) == sizeof(std::int64_t) && std::is_integral_v<T>) {
                return set_object_item(params, key, std::to_string(value));
            } else {
                return set_object_item(params, key, static_cast<double>(value));
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
        const auto build = [this]() -> Result<JsonTree> {
            BOOST_OUTCOME_TRY(const auto text, json_error_index_to_str());
            BOOST_OUTCOME_TRY(auto error, create_object());
            BOOST_OUTCOME_TRY(auto* message, add_subobject(error.get(), "message"));
            BOOST_OUTCOME_TRY(set_object_item(message, "key", text));
            BOOST_OUTCOME_TRY(auto* params, add_subobject(message, "params"));
            for (std::size_t i = 0; i < params_.size(); ++i) {
                BOOST_OUTCOME_TRY(set_param(params, fmt::format("p{}", i).c_str(), params_[i]));
            }
            BOOST_OUTCOME_TRY(set_object_item(error.get(), "path", path_));
            return error;
        };
        auto error = build();
        if (!error) {
            log_error(*logger_, "{} {}", error.error().info->message, cjson_error_position());
            return error.error();
        }
        return error.value().release();
    });
}

} // namespace xpon::api_service
