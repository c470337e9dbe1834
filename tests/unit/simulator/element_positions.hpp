#pragma once

#include "xpon/cfgdb/elements.hpp"

#include <cstdint>

namespace xpon::simulator {

/// The elements of the configuration, by their positions in the list.
#define XPON_NAME_POSITION(suffix, record, depth, size1, size2, path) suffix,
enum ElementPosition : std::uint16_t { XPON_CFGDB_ELEMENTS(XPON_NAME_POSITION) };
#undef XPON_NAME_POSITION

} // namespace xpon::simulator
