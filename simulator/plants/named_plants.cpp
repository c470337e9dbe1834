#include "simulator/plants/named_plants.hpp"

#include "simulator/plants/plant_reader.hpp"
#include "simulator/plants/plant_texts.hpp"

#include <algorithm>
#include <iterator>
#include <vector>

namespace xpon::simulator {

std::span<const PlantDescription> named_plants() {
    static const auto plants = [] {
        std::vector<PlantDescription> read;
        std::ranges::transform(plant_texts(), std::back_inserter(read),
                               [](const PlantText& plant) { return read_plant(plant.text, plant.file); });
        return read;
    }();
    return plants;
}

const PlantDescription* find_plant(std::string_view name) {
    const auto plants = named_plants();
    const auto found = std::ranges::find(plants, name, &PlantDescription::name);
    return found == plants.end() ? nullptr : &*found;
}

} // namespace xpon::simulator
