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

} // namespace
} // namespace xpon::simulator
