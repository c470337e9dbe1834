#pragma once

#include <cstdint>

namespace xpon::service {

/// One record that a commit changed in the running configuration.
struct Config_change {
    std::uint16_t element;    ///< position in the element list of the configuration database, from 0
    std::uint16_t indices[2]; ///< 0-based index of each level; 0 for a level that the element does not have
};

} // namespace xpon::service
