#pragma once

#include "api_service/core_names.hpp"

#include <cstdint>
#include <string>
#include <utility>

#include <fmt/format.h>

namespace xpon::api_service {

// The steps with which every answer is built. The first step that fails ends the building; the caller's JsonTree
// deletes what was built so far. A failed step never changes its parent.

Result<JsonTree> create_object();
Result<JsonTree> create_array();

/// A JSON value from a C++ one: string, boolean or number.
template <class T>
Result<JsonTree> create_cjson_from_value(const T& value);
template <>
Result<JsonTree> create_cjson_from_value(const std::string& value);
template <>
Result<JsonTree> create_cjson_from_value(const bool& value);
template <>
Result<JsonTree> create_cjson_from_value(const unsigned long& value);
template <>
Result<JsonTree> create_cjson_from_value(const double& value);

/// A number without a fraction, put in as its digits: formatting numbers is most of the time that printing takes.
Result<JsonTree> create_integer(std::int64_t value);

/// A key that lives as long as the program, as only literals do. Answers hold hundreds of thousands of keys: making and
/// freeing copies of them would take as long as all the rest.
struct LiteralKey {
    consteval LiteralKey(const char* literal) : text(literal) {} // NOLINT(google-explicit-constructor): see above

    const char* text;
};

/// Hands `item` to the object under a copy of `key`.
Result<void> add_to_object(cJSON* object, const char* key, JsonTree item);
/// Hands `item` to the object under `key` itself.
Result<void> add_to_object(cJSON* object, LiteralKey key, JsonTree item);
/// Hands `item` to the array, at its end.
Result<void> add_to_array(cJSON* array, JsonTree item);

template <class T>
Result<void> set_object_item(cJSON* object, const char* key, const T& value) {
    BOOST_OUTCOME_TRY(auto item, create_cjson_from_value(value));
    return add_to_object(object, key, std::move(item));
}

/// Adds an empty object or array under `key`, or to the end of `array`, and returns it. It stays with its parent.
Result<cJSON*> add_subobject(cJSON* object, const char* key);
Result<cJSON*> add_array_subobject(cJSON* object, const char* key);
Result<cJSON*> create_object_in_array(cJSON* array);
/// The same; an error ends with what the object is for.
Result<cJSON*> create_object_in_array(cJSON* array, unsigned number);

/// What a step made; the text of an error ends with what it was for, such as "port 3".
template <class T, class... Args>
Result<T> made_for(Result<T> made, fmt::format_string<Args...> what, Args&&... args) {
    if (!made && made.error().info) {
        const auto& error = made.error();
        return ErrorPayload(
            error.code, fmt::format("{} for {}", error.info->message, fmt::format(what, std::forward<Args>(args)...)));
    }
    return made;
}

/// The indented print form of `tree`.
Result<std::string> print_tree(const cJSON* tree);

/// The text behind the place where cJSON last stopped to parse, for messages; empty when it did not fail.
std::string cjson_error_position();

} // namespace xpon::api_service
