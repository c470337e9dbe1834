#pragma once

#include <span>
#include <string_view>

namespace xpon::simulator {

/// How many physical ONTs there are, and how many of them the configuration of a fresh OLT knows.
struct PlantSize {
    unsigned onts = 0;
    unsigned configured = 0; ///< at most `onts`; the first ones
};

struct NamedPlant {
    std::string_view name;
    PlantSize size;
};

inline constexpr std::string_view default_plant = "demo";

std::span<const NamedPlant> named_plants();
/// Null when there is no plant of that name.
const NamedPlant* find_plant(std::string_view name);

} // namespace xpon::simulator
