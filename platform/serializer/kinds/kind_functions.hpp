#pragma once

#include "serializer/cjson_tree.hpp"
#include "serializer/field.hpp"
#include "serializer/field_errors.hpp"

#include <cstddef>
#include <optional>

namespace xpon::serializer {

/// What a kind of field can do. `record` is the start of the structure that holds the field.
struct KindFunctions {
    void (*set_default)(const Field& field, std::byte* record);
    /// Checks `value` and stores it. After an error the field's content is unspecified.
    void (*read)(const Field& field, const cJSON& value, std::byte* record, FieldErrors& errors, const Path& path);
    /// Null after an error.
    Tree (*write)(const Field& field, const std::byte* record, FieldErrors& errors, const Path& path);
    /// Copies what means something into a zeroed record. False for a field that no reader makes.
    bool (*copy)(const Field& field, const std::byte* from, std::byte* to);
};

const KindFunctions& functions_of(Kind kind);

extern const KindFunctions number_functions;
extern const KindFunctions boolean_functions;
extern const KindFunctions enumeration_functions;
extern const KindFunctions text_functions;
extern const KindFunctions secret_functions;
extern const KindFunctions ipv4_functions;
extern const KindFunctions mac_functions;
extern const KindFunctions serial_functions;
extern const KindFunctions port_set_functions;
extern const KindFunctions vlan_set_functions;
extern const KindFunctions object_functions;
extern const KindFunctions array_functions;
extern const KindFunctions list_functions;

/// Steps that several kinds share.
/// @{
void set_default_number(const Field& field, std::byte* record);
bool copy_bytes(const Field& field, const std::byte* from, std::byte* to);
void wrong_type(FieldErrors& errors, const Path& path, std::string_view expected);
/// The string, or empty after a wrong_type error.
std::optional<std::string_view> expect_string(const cJSON& value, FieldErrors& errors, const Path& path);
/// True for an array; otherwise after a wrong_type error.
bool expect_array(const cJSON& value, FieldErrors& errors, const Path& path);
/// The number without a fraction between the limits, or empty after an error.
std::optional<std::int64_t> expect_integer(const cJSON& value, std::int64_t min, std::int64_t max, FieldErrors& errors,
                                           const Path& path);
/// A number that prints fast: its text is made here, and printing a tree does not format it again.
Tree make_integer(std::int64_t value);
/// @}

} // namespace xpon::serializer
