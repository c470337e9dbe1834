#include "simulator/reports/subscriber_report.hpp"
#include "tests/unit/simulator/subscribers/subscriber_fixture.hpp"

#include <algorithm>

#include <gmock/gmock.h>

namespace xpon::simulator {
namespace {

using namespace std::chrono_literals;
using testing::AllOf;
using testing::ElementsAre;
using testing::Field;
using testing::Gt;
using testing::IsEmpty;
using testing::Le;
using testing::Ne;
using testing::SizeIs;

/// The entries of ONT 1/1.
template <class Entry>
std::vector<Entry> of_first_ont(std::vector<Entry> entries) {
    std::erase_if(entries, [](const Entry& entry) { return entry.pon_port != 1 || entry.ont_id != 1; });
    return entries;
}

/// ONT 1/1 and its lease of service 3, whose VLAN is 300.
class LeaseTest : public SubscriberTest {
protected:
    LeaseTest() : SubscriberTest(2) {}

    /// Left of the lease; zero without one.
    [[nodiscard]] PlantTime left() const {
        for (const auto& session : of_first_ont(report_dhcp_sessions(network))) {
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
    pass(24h);
    set_front_ports(true); // not for long enough to get a link
    set_front_ports(false);
    pass(1min);
    EXPECT_EQ(left(), 0s);
    set_front_ports(true);
    // The link takes two seconds, the host asks every minute.
    pass(63s);
    EXPECT_GT(left(), 3530s);
}

TEST_F(LeaseTest, OutlivesItsOntForAWhile) {
    renew();
    set_fault("ont_los", "1/1");
    pass(3500s);
    EXPECT_THAT(left(), AllOf(Gt(0s), Le(100s)));
    pass(101s);
    EXPECT_EQ(left(), 0s);
    clear_fault("ont_los", "1/1");
    pass(2min);
    EXPECT_GT(left(), 3400s);
}

TEST_F(LeaseTest, EndsAtOnceWithItsServiceAndIsNotGivenBack) {
    const std::pair<const char*, std::function<void(RunningConfiguration&)>> losses[] = {
        {"ONT deleted", [](auto& c) { c.onts.erase(0); }},
        {"other ONT", [](auto& c) { c.onts[0].serial = 1; }},
        {"service deleted", [](auto& c) { c.onts[0].services.erase(c.onts[0].services.begin() + 2); }},
        {"other VLAN", [](auto& c) { c.onts[0].services[2].s_vid = 301; }},
        {"no agent", [](auto& c) { c.onts[0].services[2].dhcp_agent = false; }},
        {"static address", [](auto& c) { c.onts[0].services[2].static_ip = 0x0a000001; }},
    };
    const auto before = network;
    const auto lose = [&](const std::function<void(RunningConfiguration&)>& edit) {
        network = before;
        configure([&](auto& configuration) {
            configuration.onts[0].provision = 2;
            edit(configuration);
        });
    };
    lose([](auto& c) { c.onts[0].services[2].upstream_kbps = 64; });
    EXPECT_GT(left(), 0s); // it is only provided anew
    for (const auto& [name, edit] : losses) {
        SCOPED_TRACE(name);
        lose(edit);
        EXPECT_EQ(left(), 0s);
        happen([&](Plant& changed) { changed.configure(before.plant().configuration()); });
        EXPECT_EQ(left(), 0s);
        pass(2min);
        EXPECT_GT(left(), 0s);
    }
}

/// The session of ONT 1/1.
class PppoeTest : public SubscriberTest {
protected:
    PppoeTest() : SubscriberTest(2) {}

    /// Empty without one.
    [[nodiscard]] std::vector<Pppoe_session> session() const {
        return of_first_ont(report_pppoe_sessions(network));
    }
};

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
    pass(24s);
    EXPECT_THAT(session(), ElementsAre(Field(&Pppoe_session::duration_sec, Le(19U))));
}

TEST_F(PppoeTest, IsBlockedAgainAndAgainWhileTheFaultLasts) {
    set_fault("pppoe_blocked", "1/1/2"); // another service
    set_fault("pppoe_blocked", "1/2/1"); // another ONT
    EXPECT_NE(session().at(0).session_id, 0);
    set_fault("pppoe_blocked", "1/1/1");
    const auto rest = [&] {
        const auto blocked = session().at(0);
        EXPECT_EQ(blocked.session_id, 0);
        EXPECT_EQ(blocked.duration_sec, 0U);
        return blocked.unblock_rest_sec;
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
    auto ending = fault("pppoe_blocked", "1/1/1");
    ending.until = plant.now() + 30s;
    set_fault(ending);
    pass(40s);
    EXPECT_THAT(session(), ElementsAre(AllOf(Field(&Pppoe_session::session_id, Ne(0)),
                                             Field(&Pppoe_session::duration_sec, Le(7U)))));
}

} // namespace
} // namespace xpon::simulator
