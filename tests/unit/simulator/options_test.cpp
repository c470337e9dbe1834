#include "simulator/options.hpp"

#include <variant>
#include <vector>

#include <gmock/gmock.h>

namespace xpon::simulator {
namespace {

std::variant<Options, int> parse(std::vector<const char*> arguments) {
    arguments.insert(arguments.begin(), "olt_simulator");
    return parse_options(static_cast<int>(arguments.size()), arguments.data());
}

TEST(OptionsTest, NumbersOverrideThePlant) {
    const struct {
        std::vector<const char*> arguments;
        unsigned onts;
        unsigned configured;
    } cases[] = {
        {{}, 512, 460},
        {{"--plant", "empty"}, 0, 0},
        {{"--plant", "full"}, 4096, 4096},
        {{"--onts", "4096"}, 4096, 0},
        {{"--onts=20", "--configured=20"}, 20, 20},
        {{"--configured", "7"}, 512, 7},
        {{"--plant", "full", "--onts", "3"}, 3, 0},
    };
    for (const auto& [arguments, onts, configured] : cases) {
        const auto options = std::get<Options>(parse(arguments));
        EXPECT_EQ(options.size.onts, onts);
        EXPECT_EQ(options.size.configured, configured);
        EXPECT_EQ(options.boot_time, std::chrono::seconds(20));
    }
    EXPECT_EQ(std::get<int>(parse({"--plant", "/there/is/none.json"})), 2);
    const auto slow = std::get<Options>(parse({"--boot-s", "0", "--firmware-write-s", "30"}));
    EXPECT_EQ(slow.boot_time, std::chrono::seconds(0));
    EXPECT_EQ(slow.firmware_write_time, std::chrono::seconds(30));
}

} // namespace
} // namespace xpon::simulator
