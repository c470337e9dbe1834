#include "api_service/protocol/json_building.hpp"

#include <tuple>
#include <utility>

#include <fmt/format.h>

namespace xpon::api_service {
namespace {

Result<JsonTree> made(cJSON* tree, const char* what_failed) {
    if (tree == nullptr) {
        return ErrorPayload(Error::CommonError, what_failed);
    }
    return JsonTree(tree);
}

Result<void> check_parent(const cJSON* parent) {
    if (parent == nullptr) {
        return ErrorPayload(Error::InvalidInputArg, "Object cannot be null");
    }
    return core::success();
}

} // namespace

Result<JsonTree> create_object() {
    return made(cJSON_CreateObject(), "cJSON_CreateObject() failed");
}

Result<JsonTree> create_array() {
    return made(cJSON_CreateArray(), "cJSON_CreateArray() failed");
}

template <>
Result<JsonTree> create_cjson_from_value(const std::string& value) {
    return made(cJSON_CreateString(value.c_str()), "cJSON_CreateString() failed");
}

template <>
Result<JsonTree> create_cjson_from_value(const bool& value) {
    return made(cJSON_CreateBool(static_cast<cJSON_bool>(value)), "cJSON_CreateBool() failed");
}

template <>
Result<JsonTree> create_cjson_from_value(const unsigned long& value) {
    // A number of the library has a double's digits only.
    return made(cJSON_CreateRaw(std::to_string(value).c_str()), "cJSON_CreateRaw() failed");
}

template <>
Result<JsonTree> create_cjson_from_value(const double& value) {
    return made(cJSON_CreateNumber(value), "cJSON_CreateNumber() failed");
}

Result<void> add_to_object(cJSON* object, const char* key, JsonTree item) {
    BOOST_OUTCOME_TRY(check_parent(object));
    if (cJSON_AddItemToObject(object, key, item.get()) == 0) {
        return ErrorPayload(Error::CommonError, "cJSON_AddItemToObject() failed");
    }
    std::ignore = item.release();
    return core::success();
}

Result<void> add_to_array(cJSON* array, JsonTree item) {
    BOOST_OUTCOME_TRY(check_parent(array));
    if (cJSON_AddItemToArray(array, item.get()) == 0) {
        return ErrorPayload(Error::CommonError, "cJSON_AddItemToArray() failed");
    }
    std::ignore = item.release();
    return core::success();
}

Result<void> write_tree(JsonWriter& writer, const cJSON* tree) {
    if (!writer.tree(tree)) {
        return ErrorPayload(Error::CommonError, "cJSON_Print() failed");
    }
    return core::success();
}

Result<std::string> print_tree(const cJSON* tree) {
    JsonWriter writer;
    BOOST_OUTCOME_TRY(write_tree(writer, tree));
    return std::move(writer).take();
}

std::string cjson_error_position() {
    const char* position = cJSON_GetErrorPtr();
    return position == nullptr ? "" : position;
}

} // namespace xpon::api_service
