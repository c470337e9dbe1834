#include "simulator/plants/named_plants.hpp"
#include "simulator/plants/plant_reader.hpp"
#include "simulator/plants/plant_texts.hpp"

#include <stdexcept>
#include <string>

#include <gmock/gmock.h>

namespace xpon::simulator {
namespace {

/// The text of a plant that comes along, with one part of it in another's place.
std::string edited(std::string_view file, std::string_view part, std::string_view other) {
    for (const auto& plant : plant_texts()) {
        if (plant.file == file) {
            std::string text(plant.text);
            const auto at = text.find(part);
            EXPECT_NE(at, std::string::npos) << part;
            return text.replace(at, part.size(), other);
        }
    }
    return {};
}

std::string complaint_about(const std::string& text) {
    try {
        read_plant(text, "mine");
        return "none";
    } catch (const std::runtime_error& error) {
        return error.what();
    }
}

TEST(PlantReader, NamesLineAndField) {
    const struct {
        const char* part;
        const char* other;
        const char* complaint;
    } cases[] = {
        {"\"remark\"", "remark", "mine: line 3: this is no JSON"},
        {"\"remark\"", "\"comment\"", "mine: line 3: comment is unknown"},
        {"93600", "-1", "mine: line 4: uptime_s must be a number from 0 to "},
        {"\"board\"", "\"boards\"", "mine: line 5: boards is unknown"},
        {"02:53:49:00:00:01", "02:53:49:00:00:g1", "mine: line 9: board.mac_address must be a MAC address"},
        {"\"copper\"}", "\"wood\"}", "mine: line 57: front_ports[2].module names no module of \"modules\": 'wood'"},
        {"\"3\"", "\"2\"", "mine: line 56: front_ports[1].ports has port 2, which another row has already"},
        {"\"1-16\"", "\"1-17\"", "mine: line 61: pon_ports[0].ports must be a number from 1 to 16"},
        {"[0.3, 18]", "[18, 0.3]", "mine: line 61: pon_ports[0].distance_km[1] must be a number from 18 to 60"},
        {"\"configured\": 460", "\"configured\": 513",
         "mine: line 90: onts.configured must be a whole number from 0 to 512"},
        {"\"ont_rogue\"", "\"ont_rouge\"", "mine: line 99: faults[2].fault names no fault: 'ont_rouge'"},
        {"\"2/5\"", "\"2\"", "mine: line 99: faults[2].target is wrong: ont_rogue takes an ONT as PORT/ONT"},
        {"\"value\": 8.25", "\"value\": 80", "mine: line 103: faults[6].value must be a number from 0 to 40"},
    };
    for (const auto& [part, other, complaint] : cases) {
        EXPECT_THAT(complaint_about(edited("faulty.json", part, other)), testing::StartsWith(complaint));
    }
}

TEST(PlantReader, TakesSingleOntsWhereTheyAre) {
    const auto plant = read_plant(edited("demo.json", "\"configured\": 460", R"("configured": 2, "single": [
        {"ont": "5/40", "model": "SIM-ONT-4V", "serial_number": "ACME0000BEEF", "distance_km": 2.5, "power": false}])"),
                                  "mine");
    const PlantParameters parameters{.plant = &plant, .size = plant.size()};
    EXPECT_EQ(parameters.size.onts, 513U);
    const auto last = make_ont(parameters, 512);
    EXPECT_EQ(last.position, (OntPosition{.port = 5, .ont = 40}));
    EXPECT_EQ(last.serial, 0x41434d450000beefU);
    EXPECT_EQ(last.model->equipment_id, "SIM-ONT-4V");
    EXPECT_EQ(last.path.distance_km, 2.5);
    EXPECT_FALSE(last.is_switched_on);
}

} // namespace
} // namespace xpon::simulator
