#include "simulator/plant/multicast.hpp"
#include "simulator/reports/subscriber_report.hpp"
#include "tests/unit/simulator/subscribers/subscriber_fixture.hpp"

#include <algorithm>
#include <set>
#include <span>
#include <tuple>

#include <gmock/gmock.h>

namespace xpon::simulator {
namespace {

using namespace std::chrono_literals;
using testing::AllOf;
using testing::Each;
using testing::ElementsAre;
using testing::Field;
using testing::Ge;
using testing::IsEmpty;
using testing::Le;
using testing::Not;

std::vector<int> addresses_of(const std::vector<Igmp_group>& groups) {
    std::vector<int> addresses;
    for (const auto& group : groups) {
        addresses.push_back(group.address[3]);
    }
    return addresses;
}

/// The television of ONT 1/1, alone.
class IgmpTest : public SubscriberTest {
protected:
    IgmpTest() : SubscriberTest(1) {}

    [[nodiscard]] std::vector<Igmp_group> groups() const {
        return report_igmp_groups(network);
    }
    [[nodiscard]] Viewer viewer() const {
        return {plant.random(), {.port = 1, .ont = 1}, 2, plant.configuration().onts.at(0).max_groups};
    }
    /// Passes time to when the viewer leaves a group for another.
    void zap() {
        for (int attempt = 0; attempt < 100; ++attempt) {
            const auto viewing = viewer().at(plant.now());
            advance(viewing.until);
            if (viewer().at(plant.now()).group != viewing.group) {
                return;
            }
        }
        FAIL() << "It watches the same groups all the time";
    }
    [[nodiscard]] std::vector<int> watched() const {
        std::vector<int> addresses;
        const auto viewing = viewer().at(plant.now());
        for (const auto group : viewing.groups()) {
            addresses.push_back(group + 1);
        }
        return addresses;
    }
};

TEST_F(IgmpTest, MembersAnswerQueriesInTime) {
    std::set<std::uint32_t> times;
    for (int step = 0; step < 2000; ++step) {
        pass(7s);
        for (const auto& group : groups()) {
            EXPECT_EQ(group.vlan, 201);
            ASSERT_EQ(group.port_count, 1);
            EXPECT_EQ(group.ports[0].kind, switch_port_pon);
            EXPECT_EQ(group.ports[0].number, 1);
            if (group.is_in_deletion_queue == 0) {
                times.insert(group.ports[0].expires_sec);
            }
        }
    }
    // A membership lasts 260 s, and a query comes every 125 s.
    EXPECT_LE(*times.rbegin(), 260U);
    EXPECT_THAT(*times.begin(), AllOf(Ge(125U), Le(145U)));
    const auto vlans = report_snooping_vlans(plant);
    EXPECT_NE(vlans.bits[201 / 8] & 1U << 201 % 8, 0U);
    EXPECT_EQ(vlans.bits[202 / 8] & 1U << 202 % 8, 0U);
}

TEST_F(IgmpTest, AGroupThatIsLeftWaitsForDeletion) {
    zap();
    EXPECT_GT(groups().size(), watched().size());
    for (const auto& group : groups()) {
        const bool is_watched = std::ranges::count(watched(), group.address[3]) != 0;
        EXPECT_EQ(group.is_in_deletion_queue, is_watched ? 0 : 1);
        EXPECT_EQ(group.ports[0].expires_sec, is_watched ? 260U : 2U);
    }
    pass(1999ms);
    EXPECT_GT(groups().size(), watched().size());
    pass(1ms);
    EXPECT_EQ(addresses_of(groups()), watched());
    // Or it is gone at once.
    configure([](auto& configuration) { configuration.onts[0].immediate_leave = true; });
    zap();
    EXPECT_EQ(addresses_of(groups()), watched());
}

TEST_F(IgmpTest, NobodyTellsOfALostOntButMembershipsEnd) {
    const auto before = addresses_of(groups());
    ASSERT_THAT(before, Not(IsEmpty()));
    set_fault("ont_los", "1/1");
    pass(100s);
    EXPECT_EQ(addresses_of(groups()), before);
    EXPECT_THAT(groups(), Each(Field(&Igmp_group::is_in_deletion_queue, 0)));
    pass(161s);
    EXPECT_THAT(groups(), IsEmpty());
    clear_fault("ont_los", "1/1");
    pass(2min);
    EXPECT_EQ(addresses_of(groups()), watched());
}

TEST_F(IgmpTest, RouterPortsAreMembersOfEveryGroup) {
    configure([](auto& configuration) {
        configuration.front[1].is_multicast_router = true;
        configuration.front[4].is_multicast_router = true; // has no link, but is set to be one
        configuration.front[5].is_multicast_router = true;
        configuration.front[5].vlans.reset(201);
        configuration.front[6].is_multicast_router = true;
        configuration.front[6].enabled = false;
        configuration.front[2].is_multicast_router = true;
        configuration.front[3].is_multicast_router = true;
        configuration.channels[8] = {.enabled = true, .members = 0b1100};
    });
    ASSERT_THAT(groups(), Not(IsEmpty()));
    for (const auto& group : groups()) {
        std::vector<std::tuple<int, int, int, bool>> ports;
        for (const auto& port : std::span(group.ports, group.port_count)) {
            ports.emplace_back(port.kind, port.number, port.is_static, port.expires_sec != 0);
        }
        EXPECT_THAT(ports,
                    ElementsAre(std::tuple(switch_port_front, 2, 1, false), std::tuple(switch_port_front, 5, 1, false),
                                std::tuple(switch_port_pon, 1, 0, true), std::tuple(switch_port_channel, 9, 1, false)));
    }
}

} // namespace
} // namespace xpon::simulator
