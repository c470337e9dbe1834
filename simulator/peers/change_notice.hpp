#pragma once

#include "xpon/service/config_change.hpp"

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace xpon::simulator {

/// The changes that a notice of operation configuration_changed lists; empty when it is malformed or names an
/// element that there is not.
std::optional<std::vector<service::Config_change>> parse_change_notice(std::span<const std::byte> payload);

/// "PATH=RECORDS" for every element that changed, in the order of the element list, with a blank in between.
std::string summary_of(std::span<const service::Config_change> changes);

} // namespace xpon::simulator
