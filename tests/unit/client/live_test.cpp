#include "client/oltctl/live/history.hpp"
#include "client/oltctl/live/values.hpp"

#include <clocale>
#include <string>

#include <gtest/gtest.h>

namespace xpon::oltctl {
namespace {

TEST(Sparklines, ReachFromTheLeastToTheHighest) {
    std::setlocale(LC_CTYPE, "C.UTF-8");
    History history;
    EXPECT_EQ(history.sparkline(3, true), "   ");
    for (const double value : {100, 50, 0, 100}) {
        history.add(value);
    }
    EXPECT_EQ(history.sparkline(5, true), " █▅▁█");
    EXPECT_EQ(history.sparkline(2, false), "▁█");
    std::setlocale(LC_CTYPE, "C");
    EXPECT_EQ(history.sparkline(3, true), "=_#");
}

TEST(Rates, KnowCountersThatStartAnew) {
    Rate rate;
    rate.add(100, 10);
    EXPECT_FALSE(rate.per_second());
    rate.add(300, 12);
    EXPECT_EQ(rate.per_second(), 100);
    rate.add(5, 14);
    EXPECT_FALSE(rate.per_second());
    rate.add(6, 15);
    EXPECT_EQ(rate.per_second(), 1);
}

TEST(ShortNumbers, HaveFourCharactersAndAUnit) {
    for (const auto& [value, text] : {std::pair{0.0, "0"},
                                      {7.0, "7"},
                                      {0.5, "0.50"},
                                      {999.4, "999"},
                                      {999.6, "1.00k"},
                                      {52123456.0, "52.1M"},
                                      {1e13, "10.0T"},
                                      {5e16, "50000T"}}) {
        EXPECT_EQ(short_number(value), text);
    }
}

TEST(WatchedValues, KeepTheirPlaceWhenOthersComeAndGo) {
    const core::JsonTree answer(cJSON_Parse(
        R"([{"cfg_port":3,"cfg_ont_id":17,"info":{"rssi":-22.1}},{"mac":"02","tags":[1,2]},{"plain":true}])"));
    std::string text;
    for (const auto& value : values_of(answer.get())) {
        text += value.place + "=" + value.text + "|";
    }
    EXPECT_EQ(text, "3/17 cfg_port=3|3/17 cfg_ont_id=17|3/17 info rssi=-22.1|02 mac=02|02 tags=1, 2|3 plain=yes|");
}

} // namespace
} // namespace xpon::oltctl
