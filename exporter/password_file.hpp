#pragma once

#include "xpon/core/result.hpp"

#include <filesystem>
#include <string>

namespace xpon::exporter {

/// The first line of a file that only its owner, the caller, can read. In systemd's folder of credentials, which is the
/// service's alone, modes are systemd's matter. Error NoAccess with the reason.
core::Result<std::string> read_password_file(const std::filesystem::path& path);

} // namespace xpon::exporter
