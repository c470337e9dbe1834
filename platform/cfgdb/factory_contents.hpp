#pragma once

#include "cfgdb/element.hpp"

#include <span>

namespace xpon::cfgdb {

/// A record that leaves the factory with more than its defaults.
struct FactoryContent {
    ElementId element;
    std::uint16_t number; ///< from 1, as clients count
    const char* json;
};

std::span<const FactoryContent> factory_contents();

} // namespace xpon::cfgdb
