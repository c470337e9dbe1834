#pragma once

#include "api_service/core_names.hpp"
#include "api_service/protocol/json_building.hpp"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <type_traits>
#include <utility>

#include <fmt/format.h>

// How records of the device become JSON objects: one table of fields per object, walked by one function. Records come
// from other processes and from ONTs, so nothing in them is taken on trust. A record that contradicts itself gives an
// error of code InvalidInputArg.

namespace xpon::api_service {

/// One member of an object: its key, and what makes its value from the record.
template <class Record>
struct JsonField {
    LiteralKey key;
    Result<JsonTree> (*make)(const Record& record);
};

/// The text in a buffer of the device, up to its NUL or its end, made printable: never an error, for one ONT that names
/// itself oddly must not make all others unreadable.
std::string device_text(std::span<const char> buffer);

/// The count. More than there is place for is an error, which names it.
Result<std::size_t> bounded_count(std::size_t count, std::size_t limit, const char* name);

/// The `count` valid elements of an array. More than it has is an error, which names it.
template <class T, std::size_t N>
Result<std::span<const T>> bounded_items(const T (&array)[N], std::size_t count, const char* name) {
    BOOST_OUTCOME_TRY(const auto bounded, bounded_count(count, N, name));
    return std::span(array).first(bounded);
}

/// The text of an enumeration's value; a value without one is an error.
Result<std::string> text_of_value(std::span<const char* const> texts, std::size_t value);

template <class Integer>
Result<JsonTree> create_number_array(std::span<const Integer> numbers) {
    BOOST_OUTCOME_TRY(auto array, create_array());
    for (const auto number : numbers) {
        BOOST_OUTCOME_TRY(auto item, create_integer(number));
        BOOST_OUTCOME_TRY(add_to_array(array.get(), std::move(item)));
    }
    return array;
}

template <class T>
Result<JsonTree> create_field_value(const T& value) {
    if constexpr (std::is_same_v<T, std::uint64_t>) {
        return create_cjson_from_value(value);
    } else if constexpr (std::is_integral_v<T>) {
        return create_integer(value);
    } else if constexpr (std::is_floating_point_v<T>) {
        return create_cjson_from_value(static_cast<double>(value));
    } else if constexpr (std::is_bounded_array_v<T> && std::is_same_v<std::remove_extent_t<T>, char>) {
        return create_cjson_from_value(device_text(value));
    } else if constexpr (std::is_bounded_array_v<T>) {
        return create_number_array(std::span<const std::remove_extent_t<T>>(value));
    } else {
        return create_cjson_from_value(std::string(value));
    }
}

template <class T>
Result<JsonTree> create_field_value(const Result<T>& value) {
    BOOST_OUTCOME_TRY(const auto& known, value);
    return create_field_value(known);
}

template <class T>
struct MemberPointer;
template <class Record, class T>
struct MemberPointer<T Record::*> {
    using Owner = Record;
};

/// The field of a table that is a member as it stands: a number, a text, or an array of numbers.
template <auto pointer>
Result<JsonTree> member(const typename MemberPointer<decltype(pointer)>::Owner& record) {
    return create_field_value(record.*pointer);
}

/// The field of a table that is a flag of a record: the number 0 or 1.
template <auto pointer>
Result<JsonTree> flag(const typename MemberPointer<decltype(pointer)>::Owner& record) {
    return create_field_value(record.*pointer != 0 ? 1 : 0);
}

template <class Record>
using JsonFields = std::type_identity_t<std::span<const JsonField<Record>>>;

/// Adds a member for each row of the table, in its order.
template <class Record>
Result<void> add_fields(cJSON* object, const Record& record, JsonFields<Record> fields) {
    for (const auto& field : fields) {
        auto value = field.make(record);
        if (!value && value.error().code == Error::InvalidInputArg && value.error().info) {
            return ErrorPayload(value.error().code, fmt::format("{}: {}", field.key.text, value.error().info->message));
        }
        BOOST_OUTCOME_TRY(auto item, std::move(value));
        BOOST_OUTCOME_TRY(add_to_object(object, field.key, std::move(item)));
    }
    return core::success();
}

/// Adds an object of such members under `key`.
template <class Record>
Result<void> add_record(cJSON* object, const char* key, const Record& record, JsonFields<Record> fields) {
    BOOST_OUTCOME_TRY(auto* added, add_subobject(object, key));
    return add_fields(added, record, fields);
}

/// Adds an array of such objects under `key`.
template <class Record>
Result<void> add_records(cJSON* object, const char* key, std::span<const Record> records, JsonFields<Record> fields) {
    BOOST_OUTCOME_TRY(auto* array, add_array_subobject(object, key));
    for (const auto& record : records) {
        BOOST_OUTCOME_TRY(auto* added, create_object_in_array(array));
        BOOST_OUTCOME_TRY(add_fields(added, record, fields));
    }
    return core::success();
}

} // namespace xpon::api_service
