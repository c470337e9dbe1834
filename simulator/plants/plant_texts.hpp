#pragma once

#include <span>
#include <string_view>

namespace xpon::simulator {

/// A file of this folder as it was when the program was built, so that the program needs none at run time.
struct PlantText {
    std::string_view file;
    std::string_view text;
};

std::span<const PlantText> plant_texts();

} // namespace xpon::simulator
