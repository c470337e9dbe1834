#include "api_service/protocol/index_range.hpp"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace xpon::api_service {
namespace {

using core::Error;
using testing::ElementsAre;

TEST(IndexRange, WritesBackWhatItReadsInCanonicalForm) {
    const std::vector<std::pair<std::string, std::string>> cases{
        {"7", "7"},       {"2-5", "2-5"},         {"1-3,2", "1-3"},     {"1,2", "1-2"},
        {"4096", "4096"}, {"9,1,5-6", "1,5-6,9"}, {"1-4096", "1-4096"}, {"007", "7"},
    };
    for (const auto& [text, canonical] : cases) {
        EXPECT_EQ(get_string_range_from_bitset(get_bitset_from_string_range(text).value()), canonical) << text;
    }
    EXPECT_EQ(get_string_range_from_bitset({}), "");
}

TEST(IndexRange, RefusesBadTextsWithTheirReasons) {
    struct Case {
        const char* text;
        Error code;
        const char* message;
    };
    const Case cases[] = {
        {"", Error::InvalidInputArg, "One of the indexes is empty"},
        {"1,,2", Error::InvalidInputArg, "One of the indexes is empty"},
        {"1,", Error::InvalidInputArg, "One of the indexes is empty"},
        {"-", Error::InvalidInputArg, "One of the indexes is empty"},
        {"1 ", Error::InvalidInputArg, "Invalid symbol in index '1 '"},
        {"+1", Error::InvalidInputArg, "Invalid symbol in index '+1'"},
        {"1-2-3", Error::InvalidInputArg, "Invalid symbol in index '2-3'"},
        {"18446744073709551616", Error::InvalidInputArg,
         "An error occurred while parsing the index '18446744073709551616'"},
        {"0", Error::OutOfRange, "Index '0' is out of range"},
        {"4097", Error::OutOfRange, "Index '4097' is out of range"},
        {"1-99999", Error::OutOfRange, "Index '99999' is out of range"},
        {"3-1", Error::InvalidInputArg, ""},
    };
    for (const auto& [text, code, message] : cases) {
        const auto set = get_bitset_from_string_range(text);
        ASSERT_FALSE(set) << text;
        EXPECT_EQ(set.error().code, code) << text;
        EXPECT_EQ(set.error().info->message, message) << text;
    }
}

template <std::size_t N>
std::vector<std::vector<unsigned long>> walk(const std::vector<std::string>& strings) {
    std::vector<std::vector<unsigned long>> members;
    const auto range = IndexRange<N>::from_strings(strings).value();
    EXPECT_TRUE(range.for_each([&](const typename IndexRange<N>::Element& element) -> core::Result<void> {
        members.emplace_back(element.begin(), element.end());
        return core::success();
    }));
    return members;
}

TEST(IndexRange, WalksItsMembersWithTheLastLevelFastest) {
    EXPECT_THAT(walk<0>({}), ElementsAre(ElementsAre()));
    EXPECT_THAT(walk<1>({"4096,1,3"}), ElementsAre(ElementsAre(0), ElementsAre(2), ElementsAre(4095)));
    EXPECT_THAT(walk<2>({"2,1", "1,4096"}),
                ElementsAre(ElementsAre(0, 0), ElementsAre(0, 4095), ElementsAre(1, 0), ElementsAre(1, 4095)));
    EXPECT_EQ(walk<1>({"1-4096"}).size(), 4096U);
}

TEST(IndexRange, NeedsOneStringPerLevel) {
    const std::vector<std::string> one{"1"};
    EXPECT_EQ(IndexRange<0>::from_strings(one).error().code, Error::InvalidInputArg);
    EXPECT_EQ(IndexRange<2>::from_strings(one).error().code, Error::InvalidInputArg);
    const std::vector<std::string> two{"4-7", "2"};
    EXPECT_THAT(IndexRange<2>::from_strings(two).value().get_string_ranges(), ElementsAre("4-7", "2"));
}

} // namespace
} // namespace xpon::api_service
