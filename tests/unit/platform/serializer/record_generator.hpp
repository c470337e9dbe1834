#pragma once

#include "serializer/cjson_tree.hpp"
#include "serializer/field.hpp"

#include <random>

namespace xpon::test {

/// A value of the field. `size` is the number, the address, or how much a text, array or list holds.
serializer::Tree generate_value(const serializer::Field& field, std::int64_t size, std::mt19937& random);

/// A JSON object that the table accepts field by field, with every kind of value somewhere between its limits. Record
/// rules do not shape it.
serializer::Tree generate_object(const serializer::Table& table, std::mt19937& random);

} // namespace xpon::test
