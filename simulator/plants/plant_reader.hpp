#pragma once

#include "simulator/plant/plant_description.hpp"

#include <filesystem>
#include <string_view>

namespace xpon::simulator {

/// A plant as its description in JSON says; docs/plants.md documents the form. `source` names it in errors. Throws
/// std::runtime_error that names the line and the field at fault.
PlantDescription read_plant(std::string_view text, std::string_view source);

/// The same from a file. Throws std::system_error when it cannot be read.
PlantDescription read_plant_file(const std::filesystem::path& file);

} // namespace xpon::simulator
