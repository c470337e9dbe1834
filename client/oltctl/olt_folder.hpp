#pragma once

#include <filesystem>

namespace xpon::oltctl {

/// A file of the service, such as its log: below the folder that OLT_ROOT names, where the service has one.
std::filesystem::path file_of_service(const std::filesystem::path& absolute);

/// What the service calls a file of this machine. Failure (usage) for a file that is not below its folder.
std::filesystem::path name_for_service(const std::filesystem::path& file);

} // namespace xpon::oltctl
