#include "simulator/reports/subscriber_report.hpp"
#include "tests/unit/simulator/subscribers/subscriber_fixture.hpp"

#include <map>

#include <gmock/gmock.h>

namespace xpon::simulator {
namespace {

using namespace std::chrono_literals;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
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
