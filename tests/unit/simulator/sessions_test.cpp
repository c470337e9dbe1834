#include "tests/unit/simulator/subscriber_plant.hpp"

#include <algorithm>

#include <fmt/format.h>
#include <gmock/gmock.h>

namespace xpon::simulator {
namespace {

using namespace std::chrono_literals;
using testing::AllOf;
using testing::Ge;
using testing::Gt;
using testing::IsEmpty;
using testing::Le;
using testing::Not;
using testing::SizeIs;

/// ONT 1/1 and its lease of service 3, whose VLAN is 300.
class LeaseTest : public SubscriberPlant {
protected:
    /// Left of the lease; zero without one.
    [[nodiscard]] PlantTime left() const {
        for (const auto& session : of_first_ont(report_dhcp_sessions(plant))) {
            if (session.service_id == 3) {
                return PlantTime(session.life_time_msec);
            }
        }
        return {};
    }
    /// Passes time to shortly after the next renewal.
    void renew() {
        for (int second = 0; second < 1801; ++second) {
            const auto before = left();
            pass(1s);
            if (left() > before) {
                return;
            }
        }
        FAIL() << "It was not renewed";
    }
};

TEST_F(LeaseTest, RunsDownAndIsRenewedAtHalf) {
    renew();
    EXPECT_THAT(left(), AllOf(Gt(3598s), Le(3600s)));
    const auto renewed = left();
    pass(1790s);
    EXPECT_EQ(left(), renewed - 1790s);
    PlantTime least = 1h;
    for (int step = 0; step < 1000; ++step) {
        pass(17s);
        least = std::min(least, left());
    }
    EXPECT_THAT(least, AllOf(Gt(1800s), Le(1817s)));
}

TEST_F(LeaseTest, EndsWithoutUplinkAndComesBackWithIt) {
    renew();
    const auto renewed = left();
    set_front_ports(false);
    pass(1700s);
    set_front_ports(true);
    pass(50s); // nobody noticed
    EXPECT_EQ(left(), renewed - 1750s);
    set_front_ports(false);
    pass(1840s);
    EXPECT_THAT(left(), AllOf(Gt(0s), Le(10s)));
    pass(11s);
    EXPECT_EQ(left(), 0s);
    set_front_ports(true); // not for long enough to get a link
    set_front_ports(false);
    pass(24h);
    EXPECT_EQ(left(), 0s);
    set_front_ports(true);
    EXPECT_EQ(left(), 0s);
    // The link takes two seconds, the host asks every minute.
    pass(63s);
    EXPECT_GT(left(), 3530s);
}

TEST_F(LeaseTest, NeedsAnUplinkOfItsOwnVlan) {
    renew();
    configure([](auto& configuration) {
        for (auto& port : configuration.front) {
            port.vlans.reset(300);
        }
    });
    pass(3601s);
    const auto sessions = report_dhcp_sessions(plant);
    EXPECT_THAT(sessions, Not(IsEmpty()));
    EXPECT_TRUE(std::ranges::all_of(sessions, [](const auto& session) { return session.outer_vid == 500; }));
    configure([](auto& configuration) { configuration.front[3].vlans.set(300); });
    pass(1min);
    EXPECT_GT(left(), 0s);
}

TEST_F(LeaseTest, OutlivesItsOntForAWhile) {
    renew();
    set_fault("ont_los", "1/1");
    pass(3500s);
    EXPECT_THAT(left(), AllOf(Gt(0s), Le(100s)));
    pass(101s);
    EXPECT_EQ(left(), 0s);
    EXPECT_THAT(of_first_ont(report_dhcp_sessions(plant)), IsEmpty());
    EXPECT_THAT(of_first_ont(report_dhcp_sessions(plant), 2), Not(IsEmpty()));
    clear_fault("ont_los", "1/1");
    pass(2min);
    EXPECT_GT(left(), 3400s);
}

TEST_F(LeaseTest, IsKeptWhenTheOntIsOnlyProvidedAnew) {
    renew();
    pass(600s);
    const auto before = left();
    configure([](auto& configuration) {
        configuration.onts[0].provision = 2;
        configuration.onts[0].services[2].upstream_kbps = 64;
    });
    pass(1s);
    EXPECT_EQ(left(), before - 1s);
    pass(20s); // and asks again once it is in service
    EXPECT_GT(left(), 3580s);
}

struct Loss {
    const char* name;
    std::function<void(RunningConfiguration&)> edit;
};

/// What takes a subscriber's leases away at once, and does not give them back when it is undone.
class LeaseLossTest : public LeaseTest, public testing::WithParamInterface<Loss> {};

TEST_P(LeaseLossTest, IsImmediate) {
    const auto before = plant.configuration();
    ASSERT_GT(left(), 0s);
    configure(GetParam().edit);
    EXPECT_EQ(left(), 0s);
    plant.configure(before);
    EXPECT_EQ(left(), 0s);
    pass(2min);
    EXPECT_GT(left(), 0s);
}

INSTANTIATE_TEST_SUITE_P(Plant, LeaseLossTest,
                         testing::Values(Loss{"ont_deleted", [](auto& c) { c.onts.erase(0); }},
                                         Loss{"other_ont", [](auto& c) { c.onts[0].serial = 1; }},
                                         Loss{"service_deleted",
                                              [](auto& c) {
                                                  c.onts[0].services.erase(c.onts[0].services.begin() + 2);
                                                  c.onts[0].provision = 2;
                                              }},
                                         Loss{"other_vlan",
                                              [](auto& c) {
                                                  c.onts[0].services[2].s_vid = 301;
                                                  c.onts[0].provision = 2;
                                              }},
                                         Loss{"no_agent",
                                              [](auto& c) {
                                                  c.onts[0].services[2].dhcp_agent = false;
                                                  c.onts[0].provision = 2;
                                              }},
                                         Loss{"static_address",
                                              [](auto& c) {
                                                  c.onts[0].services[2].static_ip = 0x0a000001;
                                                  c.onts[0].provision = 2;
                                              }}),
                         [](const auto& instance) { return instance.param.name; });

/// The session of ONT 1/1, beside that of 2/1, which nothing happens to.
class PppoeTest : public SubscriberPlant {
protected:
    /// Empty without one.
    [[nodiscard]] std::vector<Pppoe_session> session() const {
        return of_first_ont(report_pppoe_sessions(plant));
    }
    void TearDown() override {
        const auto other = of_first_ont(report_pppoe_sessions(plant), 2);
        ASSERT_THAT(other, SizeIs(1));
        EXPECT_NE(other[0].session_id, 0);
        EXPECT_EQ(other[0].unblock_rest_sec, 0U);
    }
};

TEST_F(PppoeTest, LastsAsLongAsItsOntIsInService) {
    ASSERT_THAT(session(), SizeIs(1));
    const auto before = session()[0];
    EXPECT_THAT(before.duration_sec, AllOf(Gt(150U), Le(300U)));
    pass(1h);
    EXPECT_EQ(session()[0].duration_sec, before.duration_sec + 3600);
    set_fault("ont_dying_gasp", "1/1");
    EXPECT_THAT(session(), IsEmpty());
    clear_fault("ont_dying_gasp", "1/1");
    pass(2min);
    ASSERT_THAT(session(), SizeIs(1));
    EXPECT_LT(session()[0].duration_sec, 120U);
    EXPECT_EQ(session()[0].session_id, before.session_id);
}

TEST_F(PppoeTest, SurvivesAShortOutageOfTheNetworkOnly) {
    const auto before = session()[0].duration_sec;
    set_front_ports(false);
    pass(80s);
    set_front_ports(true);
    pass(20s);
    EXPECT_EQ(session()[0].duration_sec, before + 100);
    set_front_ports(false);
    pass(89s);
    EXPECT_THAT(session(), SizeIs(1));
    pass(1s);
    EXPECT_THAT(session(), IsEmpty());
    set_front_ports(true);
    pass(4s);
    EXPECT_THAT(session(), IsEmpty());
    pass(20s);
    ASSERT_THAT(session(), SizeIs(1));
    EXPECT_LE(session()[0].duration_sec, 19U);
}

TEST_F(PppoeTest, IsBlockedAgainAndAgainWhileTheFaultLasts) {
    set_fault("pppoe_blocked", "1/1/1");
    const auto rest = [&] {
        const auto blocked = session();
        EXPECT_THAT(blocked, SizeIs(1));
        EXPECT_EQ(blocked.at(0).session_id, 0);
        EXPECT_EQ(blocked.at(0).duration_sec, 0U);
        EXPECT_EQ(blocked.at(0).gem_port, 512);
        return blocked.at(0).unblock_rest_sec;
    };
    EXPECT_EQ(rest(), 300U);
    pass(1s);
    EXPECT_EQ(rest(), 299U);
    set_fault("pppoe_blocked", "1/1/1"); // told again, it is still the same fault
    pass(298s);
    EXPECT_EQ(rest(), 1U);
    pass(1s);
    EXPECT_EQ(rest(), 300U);
    pass(24h);
    EXPECT_EQ(rest(), 300U);
    clear_fault("pppoe_blocked", "1/1/1");
    EXPECT_THAT(session(), IsEmpty());
    pass(10s);
    ASSERT_THAT(session(), SizeIs(1));
    EXPECT_NE(session()[0].session_id, 0);
    EXPECT_THAT(session()[0].duration_sec, AllOf(Ge(0U), Le(7U)));
}

TEST_F(PppoeTest, ABlockEndsByItselfAndMeansOneServiceOnly) {
    const auto before = session()[0].duration_sec;
    set_fault("pppoe_blocked", "1/1/2");
    set_fault("pppoe_blocked", "1/2/1");
    EXPECT_EQ(session()[0].duration_sec, before);
    plant.set_fault(
        {.kind = FaultKind::pppoe_blocked, .target = target("pppoe_blocked", "1/1/1"), .until = plant.now() + 30s});
    pass(5min);
    ASSERT_THAT(session(), SizeIs(1));
    EXPECT_THAT(session()[0].duration_sec, AllOf(Ge(260U), Le(267U)));
}

TEST(PppoeBlockedTarget, IsAServiceOfAnOnt) {
    const auto& rule = *find_fault("pppoe_blocked");
    std::string complaint;
    const auto target = parse_target(rule, "3/17/8", complaint);
    ASSERT_TRUE(target);
    EXPECT_EQ(to_text(*target), "3/17/8");
    for (const auto* const text :
         {"", "3", "3/17", "3/17/0", "3/17/9", "3/17/1/1", "17/1/1", "3/257/1", "3/17/x", "//"}) {
        EXPECT_FALSE(parse_target(rule, text, complaint)) << text;
        EXPECT_EQ(complaint,
                  fmt::format("pppoe_blocked takes a service as PORT/ONT/SERVICE, 1/1/1 to 16/256/8, not '{}'", text));
    }
}

} // namespace
} // namespace xpon::simulator
