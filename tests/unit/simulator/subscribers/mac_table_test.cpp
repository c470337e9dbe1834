#include "simulator/reports/subscriber_report.hpp"
#include "tests/unit/simulator/subscribers/subscriber_fixture.hpp"

#include <algorithm>
#include <map>
#include <tuple>

#include <gmock/gmock.h>

namespace xpon::simulator {
namespace {

using namespace std::chrono_literals;
using testing::_;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::Gt;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::Lt;
using testing::Pair;

using Place = std::pair<int, int>; ///< kind and number of a switch port

class MacTableTest : public SubscriberTest {
protected:
    MacTableTest() : SubscriberTest(32) {}

    /// Where the gateways of VLANs are.
    [[nodiscard]] std::map<int, Place> gateways() const {
        std::map<int, Place> places;
        for (const auto& entry : report_mac_table(network)) {
            if (entry.ont_id == 0 && entry.kind != switch_port_cpu) {
                EXPECT_TRUE(places.emplace(entry.svid, Place(entry.kind, entry.number)).second) << entry.svid;
            }
        }
        return places;
    }
};

constexpr Place front_1{switch_port_front, 1};
constexpr Place front_2{switch_port_front, 2};

TEST_F(MacTableTest, HostsFallSilentAgeOutAndReturn) {
    std::map<int, unsigned> heard; // behind ONT 1/1, by the last octet
    constexpr unsigned looks = 400;
    for (unsigned look = 0; look < looks; ++look) {
        pass(2min);
        for (const auto& entry : report_mac_table(network)) {
            if (entry.kind == switch_port_pon && entry.number == 1 && entry.ont_id == 1) {
                ++heard[entry.mac[5]];
            }
        }
    }
    // The session and the television keep theirs up; of the rest, some come and go.
    EXPECT_THAT(heard, IsSupersetOf({std::pair(0x10, looks), std::pair(0x20, looks)}));
    EXPECT_THAT(heard, Contains(Pair(_, Lt(looks))));
    EXPECT_THAT(heard, Each(Pair(_, Gt(looks / 10))));
}

TEST_F(MacTableTest, NoMoreAddressesThanTheLimit) {
    const auto most_of_a_service = [&] {
        std::map<std::tuple<int, int, int>, unsigned> counts;
        unsigned most = 0;
        for (const auto& entry : report_mac_table(network)) {
            if (entry.ont_id != 0) {
                most = std::max(most, ++counts[{entry.number, entry.ont_id, entry.gem}]);
            }
        }
        return most;
    };
    EXPECT_EQ(most_of_a_service(), 3U);
    configure([](auto& configuration) {
        for (auto& [index, ont] : configuration.onts) {
            for (auto& service : ont.services) {
                service.mac_limit = 1;
            }
        }
    });
    EXPECT_EQ(most_of_a_service(), 1U);
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

} // namespace
} // namespace xpon::simulator
