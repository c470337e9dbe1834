#include "api_service/protocol/index_range.hpp"

#include <string>
#include <tuple>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace xpon::api_service {
namespace {

using testing::ElementsAre;

TEST(IndexRange, WritesBackWhatItReadsInCanonicalForm) {
    for (const auto& [text, canonical] :
         {std::pair{"1-3,2", "1-3"}, {"9,1,5-6", "1,5-6,9"}, {"1-4096", "1-4096"}, {"1,2", "1-2"}, {"007", "7"}}) {
        EXPECT_EQ(get_string_range_from_bitset(get_bitset_from_string_range(text).value()), canonical) << text;
    }
    EXPECT_EQ(get_string_range_from_bitset({}), "");
}

TEST(IndexRange, RefusesBadTextsWithTheirReasons) {
    const std::tuple<const char*, Error, const char*> cases[] = {
        {"", Error::InvalidInputArg, "One of the indexes is empty"},
        {"1,", Error::InvalidInputArg, "One of the indexes is empty"},
        {"-", Error::InvalidInputArg, "One of the indexes is empty"},
        {"1 ", Error::InvalidInputArg, "Invalid symbol in index '1 '"},
        {"+1", Error::InvalidInputArg, "Invalid symbol in index '+1'"},
        {"1-2-3", Error::InvalidInputArg, "Invalid symbol in index '2-3'"},
        {"18446744073709551616", Error::InvalidInputArg,
         "An error occurred while parsing the index '18446744073709551616'"},
        {"0", Error::OutOfRange, "Index '0' is out of range"},
        {"1-4097", Error::OutOfRange, "Index '4097' is out of range"},
        {"3-1", Error::InvalidInputArg, ""},
    };
    for (const auto& [text, code, message] : cases) {
        const auto set = get_bitset_from_string_range(text);
        ASSERT_FALSE(set) << text;
        EXPECT_EQ(set.error().code, code) << text;
        EXPECT_EQ(set.error().info->message, message) << text;
    }
    std::string repeated = "1";
    while (repeated.size() < longest_index_text) {
        repeated += ",1";
    }
    EXPECT_TRUE(get_bitset_from_string_range(repeated.substr(0, longest_index_text)));
    EXPECT_FALSE(get_bitset_from_string_range(repeated + ",1"));
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
    EXPECT_THAT(walk<2>({"2,1", "1,4096"}),
                ElementsAre(ElementsAre(0, 0), ElementsAre(0, 4095), ElementsAre(1, 0), ElementsAre(1, 4095)));
    const std::vector<std::string> one{"1"};
    EXPECT_FALSE(IndexRange<0>::from_strings(one)) << "one text for each level";
    EXPECT_FALSE(IndexRange<2>::from_strings(one));
}

} // namespace
} // namespace xpon::api_service
