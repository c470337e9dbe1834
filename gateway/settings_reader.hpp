#pragma once

#include "gateway/settings.hpp"

#include <optional>

namespace xpon::gateway {

/// The settings of the command line and of the file that it names. Empty when there is nothing to run: after a mistake,
/// which has been told, or --help; `status` is the exit status then.
std::optional<Settings> read_settings(int count, char** arguments, int& status);

} // namespace xpon::gateway
