#pragma once

#include "serializer/field.hpp"

#include <string>

namespace xpon::docs {

/// What values a field takes, in words: "number 3 to 4".
std::string describe_values(const serializer::Field& field);

/// What a missing key stands for; empty for fields made of others.
std::string describe_default(const serializer::Field& field);

} // namespace xpon::docs
