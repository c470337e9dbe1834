#pragma once

#include <string>
#include <string_view>

namespace xpon {

/// `absolute_path` taken below the folder that the environment variable OLT_ROOT names, so that a whole OLT can live
/// in any folder of a workstation. OLT_ROOT is unset or empty on the device: the path comes back as it is.
std::string below_olt_root(std::string_view absolute_path);

} // namespace xpon
