#pragma once

#include "serializer/field.hpp"
#include "serializer/field_errors.hpp"

#include <cstddef>

#include <cjson/cJSON.h>

/// The walks over a table. They throw std::bad_alloc and nothing else. `record` points at a structure of the table's
/// type; `path` leads to it and is null at the root.
namespace xpon::serializer {

/// Fills a zeroed structure.
void set_defaults(const Table& table, std::byte* record);

/// Fills a structure that holds its defaults. Errors come in the order of the table, unknown keys behind them in the
/// order of the data.
void read_object(const Table& table, const cJSON& data, std::byte* record, FieldErrors& errors, const Path* path);

void write_object(const Table& table, const std::byte* record, cJSON& target, FieldErrors& errors, const Path* path);

/// Copies the fields, without padding and what is beyond a count or a NUL, into a zeroed structure: equal contents
/// become equal bytes. False for a structure that no reader makes.
bool copy_canonically(const Table& table, const std::byte* from, std::byte* to);

} // namespace xpon::serializer
