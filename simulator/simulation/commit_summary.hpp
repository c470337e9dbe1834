#pragma once

#include "xpon/service/config_change.hpp"

#include <span>
#include <string>

namespace xpon::simulator {

/// "PATH=RECORDS" for every element that changed, in the order of the element list, with a blank in between.
std::string summary_of(std::span<const service::Config_change> changes);

} // namespace xpon::simulator
