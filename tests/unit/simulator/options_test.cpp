#include "simulator/options.hpp"

#include <string>
#include <vector>

#include <gmock/gmock.h>

namespace xpon::simulator {
namespace {

using testing::HasSubstr;

struct Outcome {
    std::variant<Options, int> parsed;
    std::string complaint;
};

Outcome parse(std::vector<const char*> arguments) {
    arguments.insert(arguments.begin(), "olt_simulator");
    testing::internal::CaptureStderr();
    auto parsed = parse_options(static_cast<int>(arguments.size()), arguments.data());
    return {parsed, testing::internal::GetCapturedStderr()};
}

TEST(OptionsTest, NumbersOverrideThePlant) {
    const struct {
        std::vector<const char*> arguments;
        unsigned onts;
        unsigned configured;
    } cases[] = {
        {{}, 512, 460},
        {{"--plant", "demo"}, 512, 460},
        {{"--plant", "empty"}, 0, 0},
        {{"--plant", "full"}, 4096, 4096},
        {{"--plant", "faulty"}, 512, 460},
        {{"--plant", "mixed-vendors"}, 512, 460},
        {{"--onts", "4096"}, 4096, 0},
        {{"--onts", "0"}, 0, 0},
        {{"--onts=20", "--configured=20"}, 20, 20},
        {{"--configured", "7"}, 512, 7},
        {{"--plant", "full", "--onts", "3"}, 3, 0},
    };
    for (const auto& [arguments, onts, configured] : cases) {
        const auto [parsed, complaint] = parse(arguments);
        ASSERT_TRUE(std::holds_alternative<Options>(parsed)) << complaint;
        EXPECT_EQ(std::get<Options>(parsed).size.onts, onts);
        EXPECT_EQ(std::get<Options>(parsed).size.configured, configured);
    }
}

TEST(OptionsTest, TimesAreInSeconds) {
    const auto usual = std::get<Options>(parse({}).parsed);
    EXPECT_EQ(usual.boot_time, std::chrono::seconds(20));
    EXPECT_EQ(usual.firmware_write_time, std::chrono::seconds(0));
    const auto slow = std::get<Options>(parse({"--boot-s", "0", "--firmware-write-s", "30"}).parsed);
    EXPECT_EQ(slow.boot_time, std::chrono::seconds(0));
    EXPECT_EQ(slow.firmware_write_time, std::chrono::seconds(30));
}

TEST(OptionsTest, BadOnesAreNamed) {
    const struct {
        std::vector<const char*> arguments;
        const char* complaint;
    } cases[] = {
        {{"--onts", "4097"}, "--onts: Value 4097 not in range 0 to 4096"},
        {{"--onts", "-1"}, "--onts"},
        {{"--onts", "many"}, "--onts: Value many not in range"},
        {{"--onts"}, "--onts"},
        {{"--onts", "5", "--configured", "6"}, "--configured: 6 is more than the 5 ONTs"},
        {{"--configured", "513"}, "--configured: 513 is more than the 512 ONTs"},
        {{"--plant", "Demo"}, "--plant: Demo not in {empty,demo,full,faulty,mixed-vendors}"},
        {{"--boot-s", "601"}, "--boot-s: Value 601 not in range 0 to 600"},
        {{"--firmware-write-s", "-1"}, "--firmware-write-s"},
        {{"--clock", "1"}, "--clock"},
        {{"demo"}, "demo"},
    };
    for (const auto& [arguments, complaint] : cases) {
        const auto outcome = parse(arguments);
        ASSERT_TRUE(std::holds_alternative<int>(outcome.parsed)) << complaint;
        EXPECT_EQ(std::get<int>(outcome.parsed), 2);
        EXPECT_THAT(outcome.complaint, HasSubstr(complaint));
    }
}

} // namespace
} // namespace xpon::simulator
