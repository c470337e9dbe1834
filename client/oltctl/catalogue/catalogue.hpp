#pragma once

#include <span>
#include <string_view>

namespace xpon::oltctl {

/// A route of the API.
struct CatalogueRoute {
    const char* path;
    const char* method;
    const char* privilege;
};

/// How the value of a field is written.
enum class Form { boolean, number, text, numbers, serial, object, list };

/// A field of an element of the configuration. Tables of records stand in front of their fields.
struct CatalogueField {
    const char* element; ///< its path
    const char* key;     ///< from the record on, "servers[].address" of the items of a list
    Form form;
    const char* values;  ///< what is allowed, in words
    const char* initial; ///< the default; "" where there is none
    const char* meaning; ///< "" where the key says it
    const char* names;   ///< of an enumeration, separated by blanks
};

/// @{ What the service of this release knows: made from its own tables, in their order.
std::span<const CatalogueRoute> catalogue_routes();
std::span<const CatalogueField> catalogue_fields();
/// @}

/// The field, or null. Positions in `key` may stand for "[]": "servers.0.address".
const CatalogueField* find_field(std::string_view element, std::string_view key);

} // namespace xpon::oltctl
