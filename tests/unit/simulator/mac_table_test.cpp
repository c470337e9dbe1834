#include "tests/unit/simulator/subscriber_plant.hpp"

#include <algorithm>
#include <cstring>
#include <map>
#include <set>
#include <tuple>

#include <gmock/gmock.h>

namespace xpon::simulator {
namespace {

using namespace std::chrono_literals;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::Pair;

using Place = std::pair<int, int>; ///< kind and number of a switch port

class MacTableTest : public SubscriberPlant {
protected:
    MacTableTest() : SubscriberPlant(32) {}

    /// Where the gateways of VLANs are.
    [[nodiscard]] std::map<int, Place> gateways() const {
        std::map<int, Place> places;
        for (const auto& entry : report_mac_table(plant)) {
            if (entry.ont_id == 0 && entry.kind != switch_port_cpu) {
                EXPECT_TRUE(places.emplace(entry.svid, Place(entry.kind, entry.number)).second) << entry.svid;
            }
        }
        return places;
    }
    [[nodiscard]] std::set<std::vector<std::uint8_t>> addresses_behind(unsigned port, unsigned ont) const {
        std::set<std::vector<std::uint8_t>> addresses;
        for (const auto& entry : report_mac_table(plant)) {
            if (entry.kind == switch_port_pon && entry.number == port && entry.ont_id == ont) {
                addresses.emplace(std::begin(entry.mac), std::end(entry.mac));
            }
        }
        return addresses;
    }
};

constexpr Place front_1{switch_port_front, 1};
constexpr Place front_2{switch_port_front, 2};

TEST_F(MacTableTest, HostsFallSilentAgeOutAndReturn) {
    std::map<std::vector<std::uint8_t>, unsigned> heard;
    constexpr unsigned looks = 400;
    for (unsigned look = 0; look < looks; ++look) {
        pass(2min);
        for (const auto& address : addresses_behind(1, 1)) {
            ++heard[address];
        }
    }
    // The session and the television keep theirs up; of the rest, some come and go.
    EXPECT_THAT(heard, Contains(Pair(ElementsAre(0x02, 0x53, 0x49, 1, 0, 0x10), looks)));
    EXPECT_THAT(heard, Contains(Pair(ElementsAre(0x02, 0x53, 0x49, 1, 0, 0x20), looks)));
    EXPECT_TRUE(std::ranges::any_of(heard, [](const auto& host) { return host.second < looks; }));
    EXPECT_TRUE(std::ranges::all_of(heard, [](const auto& host) { return host.second > looks / 10; }));
}

TEST_F(MacTableTest, NoMoreAddressesThanTheLimit) {
    for (const unsigned limit : {0U, 1U}) {
        configure([&](auto& configuration) {
            for (auto& [index, ont] : configuration.onts) {
                for (auto& service : ont.services) {
                    service.mac_limit = static_cast<std::uint8_t>(limit);
                }
            }
        });
        std::map<std::tuple<int, int, int>, unsigned> counts;
        unsigned most = 0;
        for (const auto& entry : report_mac_table(plant)) {
            if (entry.ont_id != 0) {
                most = std::max(most, ++counts[{entry.number, entry.ont_id, entry.gem}]);
            }
        }
        EXPECT_EQ(most, limit == 0 ? 3U : 1U);
    }
}

TEST_F(MacTableTest, EndsWithItsOntOrPort) {
    ASSERT_THAT(addresses_behind(1, 1), Not(IsEmpty()));
    ASSERT_THAT(addresses_behind(2, 1), Not(IsEmpty()));
    ASSERT_THAT(addresses_behind(3, 1), Not(IsEmpty()));
    set_fault("ont_los", "1/1");
    configure([](auto& configuration) {
        configuration.pon[1].enabled = false;
        configuration.onts.erase(2 * max_onts_per_port);
    });
    EXPECT_THAT(addresses_behind(1, 1), IsEmpty());
    EXPECT_THAT(addresses_behind(2, 1), IsEmpty());
    EXPECT_THAT(addresses_behind(3, 1), IsEmpty());
    EXPECT_THAT(addresses_behind(4, 1), Not(IsEmpty()));
}

TEST_F(MacTableTest, GatewaysFollowTheUplinks) {
    const auto everywhere = [](const Place& place) {
        return ElementsAre(Pair(100, place), Pair(200, place), Pair(300, place), Pair(500, place));
    };
    EXPECT_THAT(gateways(), everywhere(front_1));
    configure([](auto& configuration) { configuration.front[0].vlans.reset(300); });
    EXPECT_THAT(gateways(), Contains(Pair(300, front_2)));
    EXPECT_THAT(gateways(), Contains(Pair(200, front_1)));
    set_fault("module_absent", "front/1");
    EXPECT_THAT(gateways(), everywhere(front_2));
    configure([](auto& configuration) { configuration.front[1].enabled = false; });
    set_fault("module_absent", "front/3");
    set_fault("module_absent", "front/4");
    EXPECT_THAT(gateways(), IsEmpty());
    configure([](auto& configuration) { configuration.front[1].enabled = true; });
    EXPECT_THAT(gateways(), IsEmpty());
    pass(2s);
    EXPECT_THAT(gateways(), everywhere(front_2));
}

TEST_F(MacTableTest, APortChannelTakesItsMembersPlace) {
    const auto set_channel = [&](unsigned min_links) {
        configure([&](auto& configuration) {
            configuration.channels[1] = {.enabled = true, .members = 0b0000'0011, .min_links = min_links};
            configuration.front[2].enabled = configuration.front[3].enabled = false;
        });
    };
    set_channel(1);
    EXPECT_THAT(gateways(), Contains(Pair(100, Place(switch_port_channel, 2))));
    set_fault("module_absent", "front/1");
    EXPECT_THAT(gateways(), Contains(Pair(100, Place(switch_port_channel, 2))));
    set_channel(2);
    EXPECT_THAT(gateways(), IsEmpty());
    configure([](auto& configuration) { configuration.channels[1].enabled = false; });
    EXPECT_THAT(gateways(), Contains(Pair(100, front_2)));
}

TEST_F(MacTableTest, TheOltsOwnAddressIsThatOfTheBoard) {
    const auto own = [&] {
        auto table = report_mac_table(plant);
        std::erase_if(table, [](const auto& entry) { return entry.kind != switch_port_cpu; });
        return table;
    };
    EXPECT_THAT(own(), IsEmpty());
    configure([](auto& configuration) { configuration.management_vlan = 4000; });
    const auto table = own();
    ASSERT_EQ(table.size(), 1U);
    EXPECT_THAT(table[0].mac, ElementsAre(0x02, 0x53, 0x49, 0, 0, 1));
    EXPECT_EQ(table[0].svid, 4000);
    EXPECT_EQ(table[0].type, mac_entry_static);
}

TEST_F(MacTableTest, ARangeOfOntsIsAPartOfTheTable) {
    configure([](auto& configuration) { configuration.management_vlan = 4000; });
    Bitmap_ont_range range{.size = max_onts, .bits = {}};
    range.bits[0] = 0b10; // ONT 1/2
    range.bits[32] = 0b11;
    std::vector<Bcm_mac_entry> expected = report_mac_table(plant);
    std::erase_if(expected, [](const auto& entry) {
        return !((entry.kind == switch_port_pon && entry.number == 1 && entry.ont_id == 2) ||
                 (entry.kind == switch_port_pon && entry.number == 2 && entry.ont_id <= 2));
    });
    const auto table = report_mac_table_of_onts(plant, range);
    ASSERT_EQ(table.size(), expected.size());
    ASSERT_THAT(table, Not(IsEmpty()));
    EXPECT_EQ(std::memcmp(table.data(), expected.data(), table.size() * sizeof table[0]), 0);
    range.size = 1;
    EXPECT_THAT(report_mac_table_of_onts(plant, range), IsEmpty());
}

} // namespace
} // namespace xpon::simulator
