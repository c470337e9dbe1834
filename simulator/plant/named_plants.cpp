#include "simulator/plant/named_plants.hpp"

#include "simulator/plant/ont_layout.hpp"

#include <algorithm>
#include <array>

namespace xpon::simulator {
namespace {

// A usual plant fills an eighth of the OLT, nine of ten of its ONTs are in service.
constexpr PlantSize usual{.onts = 32 * pon_ports, .configured = 32 * pon_ports * 9 / 10};

constexpr std::array plants{
    NamedPlant{"empty", {.onts = 0, .configured = 0}},
    NamedPlant{default_plant, usual},
    NamedPlant{"full", {.onts = max_onts, .configured = max_onts}},
    NamedPlant{"faulty", usual},
    NamedPlant{"mixed-vendors", usual},
};

} // namespace

std::span<const NamedPlant> named_plants() {
    return plants;
}

const NamedPlant* find_plant(std::string_view name) {
    const auto* found = std::ranges::find(plants, name, &NamedPlant::name);
    return found == plants.end() ? nullptr : found;
}

} // namespace xpon::simulator
