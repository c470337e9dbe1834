#pragma once

#include "api_service/protocol/route_table.hpp"
#include "cfgdb/element.hpp"

#include <algorithm>
#include <string>

namespace xpon::docs {

inline std::string full_path(const cfgdb::Element& element) {
    return std::string("configuration.") + element.path;
}

/// The element of the configuration that a route reads or writes; null for a route of another kind.
inline const cfgdb::Element* element_of(const api_service::RouteRow& row) {
    const auto elements = cfgdb::all_elements();
    const auto found = std::ranges::find(elements, row.path, full_path);
    return found == elements.end() ? nullptr : &*found;
}

} // namespace xpon::docs
