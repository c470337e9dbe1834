#include "tests/system/olt.hpp"

#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace xpon::test {
namespace {

/// ONTs with a serial in the running configuration.
int configured_onts(client::Client& client) {
    const auto answer = client.request({.path = "configuration.ZebGCfg.pon.ont",
                                        .method = "get",
                                        .indices = {"1-16", "1-256"},
                                        .config_type = "running"});
    if (!answer || !answer.value().success) {
        return -1;
    }
    EXPECT_EQ(cJSON_GetArraySize(answer.value().data.get()), 4096);
    int count = 0;
    const cJSON* ont = nullptr;
    cJSON_ArrayForEach(ont, answer.value().data.get()) {
        const auto* first_byte = cJSON_GetArrayItem(cJSON_GetObjectItemCaseSensitive(ont, "serial"), 0);
        count += cJSON_GetNumberValue(first_byte) == 'S' ? 1 : 0;
    }
    return count;
}

struct Size {
    std::vector<std::string> options;
    int configured;

    friend void PrintTo(const Size& size, std::ostream* out) {
        *out << testing::PrintToString(size.options);
    }
};

class PlantSize : public testing::TestWithParam<Size> {};

TEST_P(PlantSize, FillsTheConfiguration) {
    Olt olt;
    olt.start(GetParam().options);
    auto client = Olt::log_in("viewer");
    EXPECT_EQ(configured_onts(client), GetParam().configured);
}

INSTANTIATE_TEST_SUITE_P(, PlantSize,
                         testing::Values(Size{{"--onts", "0"}, 0}, Size{{"--onts", "16"}, 0},
                                         Size{{"--onts", "40", "--configured", "25"}, 25},
                                         Size{{"--onts", "4096", "--configured", "4096"}, 4096}),
                         [](const auto& test) { return "Size" + std::to_string(test.index); });

} // namespace
} // namespace xpon::test
