#pragma once

#include "serializer/field.hpp"

#include <cstddef>
#include <optional>
#include <string_view>

namespace xpon::serializer {

/// The position of the first byte with which `text` leaves its class; the length when something is missing at the end.
/// An empty text is in every class.
std::optional<std::size_t> find_wrong_character(Characters characters, std::string_view text);

/// The name of the class as clients see it.
std::string_view name_of(Characters characters);

} // namespace xpon::serializer
