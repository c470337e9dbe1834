#pragma once

#include "schemas/json.hpp"

#include <string>

// TypeScript of schemas as this folder makes them; what else JSON Schema knows is an error.

namespace xpon::schemas {

/// The type of a schema, written at an indentation of so many blanks.
std::string type_of(const Json& schema, std::size_t indentation = 0);

/// What a schema says beyond the type, as a comment with the blanks before it; empty for nothing.
std::string comment_of(const Json& schema, std::size_t indentation);

/// The exported declaration of a definition: an interface of an object, else a type.
std::string declaration(const std::string& name, const Json& schema);

} // namespace xpon::schemas
