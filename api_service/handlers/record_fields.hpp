#pragma once

#include "api_service/core_names.hpp"
#include "api_service/protocol/json_writer.hpp"
#include "api_service/protocol/payload.hpp"
#include "api_service/protocol/shape.hpp"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include <fmt/format.h>

// How records of the device become JSON text: one table of fields per object, walked by one function. Records come
// from other processes and from ONTs, so nothing in them is taken on trust. A record that contradicts itself gives an
// error of code InvalidInputArg.

namespace xpon::api_service {

/// What writes a value from the record, and what values those are.
template <class Record>
struct FieldValue {
    Result<void> (*write)(JsonWriter& writer, const Record& record);
    const Shape* shape;
};

/// One member of an object: its key, its value, and what clients have to know of it.
template <class Record>
struct JsonField {
    std::string_view key;
    FieldValue<Record> value;
    const char* about = "";
};

template <class Record>
constexpr Member as_member(const JsonField<Record>& field) {
    return {.key = field.key, .shape = field.value.shape, .about = field.about};
}

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
void write_numbers(JsonWriter& writer, std::span<const Integer> numbers) {
    writer.begin_array();
    for (const auto number : numbers) {
        writer.integer(number);
    }
    writer.end_array();
}

template <class T>
Result<void> write_value(JsonWriter& writer, const T& value) {
    if constexpr (std::is_integral_v<T>) {
        writer.integer(value);
    } else if constexpr (std::is_floating_point_v<T>) {
        writer.number(static_cast<double>(value));
    } else if constexpr (std::is_bounded_array_v<T> && std::is_same_v<std::remove_extent_t<T>, char>) {
        writer.text(device_text(value));
    } else if constexpr (std::is_bounded_array_v<T>) {
        write_numbers(writer, std::span<const std::remove_extent_t<T>>(value));
    } else {
        writer.text(value);
    }
    return core::success();
}

template <class T>
Result<void> write_value(JsonWriter& writer, const Result<T>& value) {
    BOOST_OUTCOME_TRY(const auto& known, value);
    return write_value(writer, known);
}

template <class T>
struct MemberPointer;
template <class Record, class T>
struct MemberPointer<T Record::*> {
    using Owner = Record;
    using Type = T;
};
template <auto pointer>
using OwnerOf = typename MemberPointer<decltype(pointer)>::Owner;

/// The value of a field that is a member as it stands: a number, a text, or an array of numbers.
template <auto pointer>
inline constexpr FieldValue<OwnerOf<pointer>> member{
    [](JsonWriter& writer, const OwnerOf<pointer>& record) { return write_value(writer, record.*pointer); },
    &shape_of<typename MemberPointer<decltype(pointer)>::Type>};

/// The value of a field that is a flag of a record: the number 0 or 1.
template <auto pointer>
inline constexpr FieldValue<OwnerOf<pointer>> flag{[](JsonWriter& writer, const OwnerOf<pointer>& record) {
                                                       return write_value(writer, record.*pointer != 0 ? 1 : 0);
                                                   },
                                                   &shapes::flag};

template <class Record>
using JsonFields = std::type_identity_t<std::span<const JsonField<Record>>>;

/// Writes a member for each row of the table, in its order.
template <class Record>
Result<void> write_fields(JsonWriter& writer, const Record& record, JsonFields<Record> fields) {
    for (const auto& field : fields) {
        writer.key(field.key);
        auto written = field.value.write(writer, record);
        if (!written && written.error().code == Error::InvalidInputArg && written.error().info) {
            return ErrorPayload(written.error().code, fmt::format("{}: {}", field.key, written.error().info->message));
        }
        BOOST_OUTCOME_TRY(std::move(written));
    }
    return core::success();
}

/// Writes an object of what `fill` writes.
template <class Fill>
Result<void> write_object(JsonWriter& writer, Fill&& fill) {
    writer.begin_object();
    BOOST_OUTCOME_TRY(std::forward<Fill>(fill)());
    writer.end_object();
    return core::success();
}

/// Writes an array with one object for each item, of what `fill` writes.
template <class Items, class Fill>
Result<void> write_objects(JsonWriter& writer, const Items& items, Fill&& fill) {
    writer.begin_array();
    for (const auto& item : items) {
        BOOST_OUTCOME_TRY(write_object(writer, [&] { return fill(item); }));
    }
    writer.end_array();
    return core::success();
}

/// Writes an object of such members under `key`.
template <class Record>
Result<void> write_record(JsonWriter& writer, std::string_view key, const Record& record, JsonFields<Record> fields) {
    writer.key(key);
    return write_object(writer, [&] { return write_fields(writer, record, fields); });
}

/// Writes an array of such objects under `key`.
template <class Record>
Result<void> write_records(JsonWriter& writer, std::string_view key, std::span<const Record> records,
                           JsonFields<Record> fields) {
    writer.key(key);
    return write_objects(writer, records, [&](const Record& record) { return write_fields(writer, record, fields); });
}

/// The data of an answer, as text, that `write` writes.
template <class Write>
Result<std::string> write_data(Write&& write) {
    JsonWriter writer(data_depth);
    BOOST_OUTCOME_TRY(std::forward<Write>(write)(writer));
    return std::move(writer).take();
}

} // namespace xpon::api_service
