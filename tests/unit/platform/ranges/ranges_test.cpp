#include "xpon/ranges/ont_range.h"
#include "xpon/ranges/port_ranges.h"
#include "xpon/ranges/vlan_range.h"

#include <cerrno>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>

namespace xpon {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;

/// What `next` gives of the bitmap until it has no more.
template <class Member, class Bitmap>
std::vector<int> members(const Bitmap& bitmap, int (*next)(const Bitmap*, Bitmap_iterator*, Member*)) {
    std::vector<int> found;
    Member member = 0;
    for (Bitmap_iterator place{}; next(&bitmap, &place, &member) == 0;) {
        found.push_back(member);
    }
    return found;
}

std::vector<int> members_of(const Bitmap_pon_port_range& bitmap) {
    return members(bitmap, get_next_bitmap_pon_port_ids);
}

std::vector<int> members_of(const Bitmap_vlan& bitmap) {
    return members(bitmap, get_next_bitmap_vlan_ids);
}

std::vector<std::pair<int, int>> members_of(const Bitmap_ont_range& bitmap) {
    std::vector<std::pair<int, int>> onts;
    std::uint8_t port = 0;
    std::uint16_t ont = 0;
    for (Bitmap_iterator place{}; get_next_bitmap_ont_ids(&bitmap, &place, &port, &ont) == 0;) {
        onts.emplace_back(port, ont);
    }
    return onts;
}

/// 0 or the errno value of the failure.
template <class Call>
int errno_of(Call call) {
    errno = 0;
    return call() == 0 ? 0 : errno;
}

TEST(PortRange, IsASetOfPortNumbers) {
    Bitmap_pon_port_range bitmap{};
    ASSERT_EQ(get_parsed_pon_port_range("7,1-3,2,16", &bitmap), 0);
    EXPECT_THAT(members_of(bitmap), ElementsAre(1, 2, 3, 7, 16));
}

TEST(Ranges, RefuseWhatIsNoListOrNoPort) {
    const std::vector<std::pair<std::string, int>> cases{
        {"", EINVAL},     {"1,", EINVAL},   {",1", EINVAL},         {"1,,2", EINVAL},
        {"3-1", EINVAL},  {"1-", EINVAL},   {"-1", EINVAL},         {"1-2-3", EINVAL},
        {" 1", EINVAL},   {"+1", EINVAL},   {"1 ", EINVAL},         {"0x1", EINVAL},
        {"0-3", ERANGE},  {"1-17", ERANGE}, {"4294967297", ERANGE}, {"99999999999999999999", ERANGE},
        {"17-x", EINVAL}, {"0001", 0},
    };
    for (const auto& [text, expected] : cases) {
        Bitmap_pon_port_range pon{};
        Bitmap_uplink_port_range uplink{};
        Bitmap_ont_range onts{};
        EXPECT_EQ(errno_of([&] { return get_parsed_pon_port_range(text.c_str(), &pon); }), expected) << text;
        EXPECT_EQ(errno_of([&] { return get_parsed_uplink_port_range(text.c_str(), &uplink); }), expected) << text;
        EXPECT_EQ(errno_of([&] { return get_parsed_ont_range(text.c_str(), "1", &onts); }), expected) << text;
        if (expected != 0) {
            EXPECT_THAT(members_of(pon), IsEmpty()) << text;
            EXPECT_THAT(members_of(onts), IsEmpty()) << text;
        }
    }
}

TEST(OntRange, CountsFromZeroAndIsReadFromOneTextAsWell) {
    Bitmap_ont_range two{};
    Bitmap_ont_range one{};
    ASSERT_EQ(get_parsed_ont_range("1,16", "1,256", &two), 0);
    ASSERT_EQ(get_parsed_ont_range("1,16/1,256", &one), 0);
    for (const auto& bitmap : {one, two}) {
        EXPECT_THAT(members_of(bitmap), ElementsAre(Pair(0, 0), Pair(0, 255), Pair(15, 0), Pair(15, 255)));
    }
    ASSERT_EQ(get_parsed_ont_range("3", &one), 0);
    EXPECT_THAT(members_of(one), SizeIs(256));
    for (const auto& [text, expected] : {std::pair("1/", EINVAL),
                                         {"/1", EINVAL},
                                         {"1/1/1", EINVAL},
                                         {"1/257", ERANGE},
                                         {"17/1", ERANGE},
                                         {"17/x", EINVAL}}) {
        EXPECT_EQ(errno_of([&, name = text] { return get_parsed_ont_range(name, &one); }), expected) << text;
    }
}

TEST(VlanSet, HoldsTheVlansThatThereAre) {
    Bitmap_vlan bitmap{};
    ASSERT_EQ(prepare_bitmap_vlan(&bitmap), 0);
    EXPECT_THAT(members_of(bitmap), IsEmpty());
    for (const unsigned vlan : {4094U, 0U, 1U, 100U}) {
        ASSERT_EQ(bitfield_set_bit(bitmap.bits, bitmap.size, vlan), 0);
    }
    EXPECT_EQ(errno_of([&] { return bitfield_set_bit(bitmap.bits, bitmap.size, 4095); }), ERANGE);
    EXPECT_THAT(members_of(bitmap), ElementsAre(1, 100, 4094));
    bitfield_reset(bitmap.bits, bitmap.size);
    bitfield_invert(bitmap.bits, bitmap.size);
    EXPECT_THAT(members_of(bitmap), testing::AllOf(SizeIs(4094), testing::Contains(1), testing::Contains(4094)));
}

TEST(PortRange, TellsSinglePorts) {
    Bitmap_uplink_port_range bitmap{};
    std::uint8_t value = 9;
    ASSERT_EQ(get_parsed_uplink_port_range("2", &bitmap), 0);
    for (const auto& [port, expected] : {std::pair<std::uint8_t, int>(2, 1), {3, 0}}) {
        EXPECT_EQ(get_bitmap_uplink_port_ids_value(&bitmap, port, &value), 0);
        EXPECT_EQ(value, expected);
    }
    for (const std::uint8_t port : std::vector<std::uint8_t>{0, 17}) {
        EXPECT_EQ(errno_of([&] { return get_bitmap_uplink_port_ids_value(&bitmap, port, &value); }), ERANGE);
    }
}

TEST(Ranges, ABitmapOfImpossibleSizeIsRefused) {
    Bitmap_vlan vlans{.size = 0xffffffff, .bits = {}};
    Bitmap_iterator place{};
    std::uint16_t vlan = 0;
    EXPECT_EQ(errno_of([&] { return get_next_bitmap_vlan_ids(&vlans, &place, &vlan); }), EINVAL);
}

} // namespace
} // namespace xpon
