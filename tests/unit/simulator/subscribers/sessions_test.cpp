#include "simulator/reports/subscriber_report.hpp"
#include "tests/unit/simulator/subscribers/subscriber_fixture.hpp"

#include <utility>

#include <gtest/gtest.h>

namespace xpon::simulator {
namespace {

using namespace std::chrono_literals;

/// ONT 1/1 and its lease of service 3, whose VLAN is 300.
class LeaseTest : public SubscriberTest {
protected:
    LeaseTest() : SubscriberTest(2) {}

    /// How long the session of service 1 has been open; empty without one.
    [[nodiscard]] std::optional<PlantTime> open_for() const {
        for (const auto& session : report_pppoe_sessions(network)) {
            if (session.pon_port == 1 && session.ont_id == 1 && session.session_id != 0) {
                return std::chrono::seconds(session.duration_sec);
            }
        }
        return std::nullopt;
    }
    /// Left of the lease; zero without one.
    [[nodiscard]] PlantTime left() const {
        for (const auto& session : report_dhcp_sessions(network)) {
            if (session.pon_port == 1 && session.ont_id == 1 && session.service_id == 3) {
                return PlantTime(session.life_time_msec);
            }
        }
        return {};
    }
};

TEST_F(LeaseTest, EndsAtOnceWithItsServiceAndIsNotGivenBack) {
    const std::pair<const char*, std::function<void(RunningConfiguration&)>> losses[] = {
        {"ONT deleted", [](auto& c) { c.onts.take(0); }},
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

TEST_F(LeaseTest, ClientsAskAnewWhenTestersHaveThem) {
    static constexpr OntPosition ont{.port = 1, .ont = 1};
    const struct {
        const char* name;
        std::function<void(Plant&)> act;
        PlantTime left; ///< of the lease, at once
        bool keeps_lease;
        bool keeps_session;
    } cases[] = {
        {"renewed", [](Plant& changed) { changed.change_leases(ont, 3, false); }, 1h, false, true},
        {"dropped", [](Plant& changed) { changed.change_leases(ont, 3, true); }, 0s, false, true},
        {"ended", [](Plant& changed) { changed.end_session(ont, 1); }, left(), true, false},
    };
    const auto before = network;
    for (const auto& [name, act, left_at_once, keeps_lease, keeps_session] : cases) {
        SCOPED_TRACE(name);
        network = before;
        happen(act);
        EXPECT_EQ(left(), left_at_once);
        // More often than is remembered, each as good as the first one.
        for (int nth = 0; nth < 300; ++nth) {
            EXPECT_EQ(open_for().has_value(), keeps_session);
            pass(12s);
            EXPECT_TRUE(keeps_lease || left() >= 1h - 12s) << left().count();
            EXPECT_EQ(open_for() < 10s, !keeps_session);
            happen(act);
        }
        pass(70min);
        EXPECT_GT(left(), 30min);
        EXPECT_GE(open_for(), 69min);
    }
}

} // namespace
} // namespace xpon::simulator
