#include "api_service/protocol/json_building.hpp"

#include "api_service/protocol/json_writer.hpp"

#include <array>
#include <charconv>
#include <limits>
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

template <class Integer>
Result<JsonTree> made_of_digits(Integer value) {
    std::array<char, std::numeric_limits<Integer>::digits10 + 3> digits{}; // with sign and NUL
    std::to_chars(digits.begin(), digits.end() - 1, value);
    return made(cJSON_CreateRaw(digits.data()), "cJSON_CreateRaw() failed");
}

Result<void> check_parent(const cJSON* parent) {
    if (parent == nullptr) {
        return ErrorPayload(Error::InvalidInputArg, "Object cannot be null");
    }
    return core::success();
}

/// `add` is one of the two functions of the library, which differ in who owns the key.
Result<void> hand_over(cJSON_bool (*add)(cJSON* object, const char* key, cJSON* item), cJSON* object, const char* key,
                       JsonTree item) {
    BOOST_OUTCOME_TRY(check_parent(object));
    if (add(object, key, item.get()) == 0) {
        return ErrorPayload(Error::CommonError, "cJSON_AddItemToObject() failed");
    }
    std::ignore = item.release();
    return core::success();
}

Result<cJSON*> add_made_member(cJSON* object, const char* key, cJSON* made_member, const char* maker) {
    JsonTree member(made_member);
    if (member == nullptr) {
        return ErrorPayload(Error::CommonError, fmt::format("{} failed for {}", maker, key));
    }
    cJSON* const borrowed = member.get();
    BOOST_OUTCOME_TRY(add_to_object(object, key, std::move(member)));
    return borrowed;
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
    return made_of_digits(value);
}

template <>
Result<JsonTree> create_cjson_from_value(const double& value) {
    return made(cJSON_CreateNumber(value), "cJSON_CreateNumber() failed");
}

Result<JsonTree> create_integer(std::int64_t value) {
    return made_of_digits(value);
}

Result<void> add_to_object(cJSON* object, const char* key, JsonTree item) {
    return hand_over(cJSON_AddItemToObject, object, key, std::move(item));
}

Result<void> add_to_object(cJSON* object, LiteralKey key, JsonTree item) {
    return hand_over(cJSON_AddItemToObjectCS, object, key.text, std::move(item));
}

Result<void> add_to_array(cJSON* array, JsonTree item) {
    BOOST_OUTCOME_TRY(check_parent(array));
    if (cJSON_AddItemToArray(array, item.get()) == 0) {
        return ErrorPayload(Error::CommonError, "cJSON_AddItemToArray() failed");
    }
    std::ignore = item.release();
    return core::success();
}

Result<cJSON*> add_subobject(cJSON* object, const char* key) {
    BOOST_OUTCOME_TRY(check_parent(object));
    return add_made_member(object, key, cJSON_CreateObject(), "cJSON_CreateObject()");
}

Result<cJSON*> add_array_subobject(cJSON* object, const char* key) {
    BOOST_OUTCOME_TRY(check_parent(object));
    return add_made_member(object, key, cJSON_CreateArray(), "cJSON_CreateArray()");
}

Result<cJSON*> create_object_in_array(cJSON* array) {
    BOOST_OUTCOME_TRY(check_parent(array));
    BOOST_OUTCOME_TRY(auto object, create_object());
    cJSON* const borrowed = object.get();
    BOOST_OUTCOME_TRY(add_to_array(array, std::move(object)));
    return borrowed;
}

Result<cJSON*> create_object_in_array(cJSON* array, unsigned number) {
    return made_for(create_object_in_array(array), "{}", number);
}

Result<std::string> print_tree(const cJSON* tree) {
    JsonWriter writer;
    if (!writer.tree(tree)) {
        return ErrorPayload(Error::CommonError, "cJSON_Print() failed");
    }
    return std::move(writer).take();
}

std::string cjson_error_position() {
    const char* position = cJSON_GetErrorPtr();
    return position == nullptr ? "" : position;
}

} // namespace xpon::api_service
