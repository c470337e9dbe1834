#pragma once

#include "serializer/cjson_tree.hpp"
#include "serializer/field.hpp"

namespace xpon::test {

/// A value of the field. `size` is the number, the address, or how much a text, array or list holds; the rest of it
/// changes with the variant.
serializer::Tree generate_value(const serializer::Field& field, std::int64_t size, unsigned variant);

/// A JSON object that the table accepts field by field, its values often limits, some keys missing. Record rules do
/// not shape it.
serializer::Tree generate_object(const serializer::Table& table, unsigned variant);

} // namespace xpon::test
