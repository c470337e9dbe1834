#pragma once

#include "serializer/field.hpp"

#include <cstddef>
#include <cstring>
#include <string_view>

namespace xpon::serializer {

template <class Type>
Type load(const Field& field, const std::byte* record) {
    Type value;
    std::memcpy(&value, record + field.offset, sizeof(Type));
    return value;
}

template <class Type>
void store(const Field& field, std::byte* record, const Type& value) {
    std::memcpy(record + field.offset, &value, sizeof(Type));
}

/// The same for the kinds that hold one number, whatever its size.
std::int64_t load_number(const Field& field, const std::byte* record);
void store_number(const Field& field, std::byte* record, std::int64_t value);

/// A char array up to its NUL, or all of it when it has none.
std::string_view load_text(const Field& field, const std::byte* record);
/// `text` must be shorter than the field; what follows it becomes zero.
void store_text(const Field& field, std::byte* record, std::string_view text);

} // namespace xpon::serializer
