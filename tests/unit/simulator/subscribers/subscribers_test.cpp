#include "simulator/reports/subscriber_report.hpp"
#include "tests/unit/simulator/subscribers/subscriber_fixture.hpp"
#include "xpon/peer_side/serial_bytes.hpp"

#include <algorithm>
#include <cstring>
#include <map>
#include <set>
#include <tuple>

#include <gmock/gmock.h>

namespace xpon::simulator {
namespace {

using namespace std::chrono_literals;

/// Half a thousand ONTs, some without power, and what may happen to them.
class SubscribersTest : public SubscriberTest {
protected:
    SubscribersTest() : SubscriberTest(512) {}

    /// What is true of the tables at any time.
    void check() const {
        const auto table = report_mac_table(network);
        std::map<MacBytes, Bcm_mac_entry> by_mac;
        for (const auto& entry : table) {
            EXPECT_TRUE(by_mac.emplace(std::to_array(entry.mac), entry).second);
            check_host(entry);
        }
        EXPECT_TRUE(std::ranges::is_sorted(
            table, {}, [](const auto& entry) { return std::pair(entry.svid, std::to_array(entry.mac)); }));
        check_leases(by_mac);
        check_sessions(by_mac);
        check_groups();
    }

private:
    using MacBytes = std::array<std::uint8_t, 6>;

    /// The numbers that say whose an address is.
    static MacBytes mac_of(unsigned port, unsigned ont, unsigned gem, unsigned host) {
        const unsigned service = (gem - 512) % 8 + 1;
        const auto octet = [](unsigned number) { return static_cast<std::uint8_t>(number); };
        return {0x02, 0x53, 0x49, octet(port), octet(ont - 1), octet(service * 16 + host)};
    }

    static std::uint16_t index_of(const auto& session) {
        return static_cast<std::uint16_t>((session.pon_port - 1) * max_onts_per_port + session.ont_id - 1);
    }

    void check_host(const Bcm_mac_entry& entry) const {
        if (entry.ont_id == 0) {
            EXPECT_EQ(entry.gem, 0);
            return;
        }
        EXPECT_EQ(entry.kind, switch_port_pon);
        EXPECT_EQ(std::to_array(entry.mac), mac_of(entry.number, entry.ont_id, entry.gem, entry.mac[5] % 16));
        const auto ont = plant.ont_configured_as(
            static_cast<std::uint16_t>((entry.number - 1) * max_onts_per_port + entry.ont_id - 1));
        ASSERT_TRUE(ont);
        EXPECT_EQ(ont->point.state, ont_operational);
        const auto service =
            std::ranges::find(ont->settings->services, (entry.gem - 512) % 8 + 1, &ServiceSettings::number);
        ASSERT_NE(service, ont->settings->services.end());
        EXPECT_EQ(std::tuple(entry.svid, entry.cvid, entry.uvid),
                  std::tuple(service->s_vid, service->c_vid, service->uni_vid));
    }

    void check_leases(const std::map<MacBytes, Bcm_mac_entry>& by_mac) const {
        std::set<std::uint32_t> addresses;
        const auto sessions = report_dhcp_sessions(network);
        EXPECT_FALSE(sessions.empty());
        EXPECT_TRUE(std::ranges::is_sorted(sessions, {}, [](const auto& session) {
            return std::tuple(session.pon_port, session.ont_id, session.service_id, std::to_array(session.mac));
        }));
        for (const auto& session : sessions) {
            const auto host = session.mac[5] % 16U;
            EXPECT_EQ(std::to_array(session.mac), mac_of(session.pon_port, session.ont_id, session.gem_port, host));
            EXPECT_EQ(session.gem_port, 512 + (session.ont_id - 1) * 8 + session.service_id - 1);
            EXPECT_THAT(session.ip, testing::ElementsAre(10, 64 + session.pon_port, session.ont_id - 1,
                                                         session.service_id * 16 + host));
            EXPECT_TRUE(session.life_time_msec >= 1 && session.life_time_msec <= 3'600'000);
            std::uint32_t address = 0;
            std::memcpy(&address, session.ip, sizeof address);
            EXPECT_TRUE(addresses.insert(address).second);
            const auto known = by_mac.find(std::to_array(session.mac));
            EXPECT_TRUE(known == by_mac.end() || known->second.svid == session.outer_vid);
            const auto ont = plant.ont_configured_as(index_of(session));
            const bool is_in_service = ont && ont->point.state == ont_operational;
            // It has talked then.
            EXPECT_TRUE(known != by_mac.end() || !is_in_service || session.life_time_msec <= 3'300'000);
            check_serial(session);
        }
    }

    void check_sessions(const std::map<MacBytes, Bcm_mac_entry>& by_mac) const {
        std::set<std::uint16_t> ids;
        const auto sessions = report_pppoe_sessions(network);
        EXPECT_FALSE(sessions.empty());
        EXPECT_TRUE(std::ranges::is_sorted(
            sessions, {}, [](const auto& session) { return std::pair(session.pon_port, session.gem_port); }));
        for (const auto& session : sessions) {
            EXPECT_TRUE(session.session_id == 0 || ids.insert(session.session_id).second);
            EXPECT_EQ(session.session_id == 0, session.unblock_rest_sec != 0);
            const auto known = by_mac.find(std::to_array(session.client_mac));
            ASSERT_NE(known, by_mac.end());
            EXPECT_EQ(std::tuple(known->second.number, known->second.ont_id, known->second.gem),
                      std::tuple(session.pon_port, session.ont_id, session.gem_port));
            check_serial(session);
        }
    }

    void check_groups() const {
        const auto groups = report_igmp_groups(network);
        const auto place = [](const Igmp_group& group) { return std::pair(group.vlan, std::to_array(group.address)); };
        EXPECT_EQ(std::ranges::adjacent_find(groups, std::greater_equal(), place), groups.end());
        for (const auto& group : groups) {
            EXPECT_EQ(group.address[0], 239);
            EXPECT_TRUE(group.filter_mode == igmp_exclude || group.source_count > 0); // INCLUDE nothing is none
        }
    }

    void check_serial(const auto& session) const {
        const auto serial = plant.configuration().onts.at(index_of(session)).serial;
        EXPECT_EQ(std::to_array(session.ont_serial), serial_bytes(serial));
    }
};

TEST_F(SubscribersTest, AreTheSameInEveryTable) {
    check();
    const auto groups = report_igmp_groups(network);
    EXPECT_GT(groups.size(), 64U); // two VLANs
    EXPECT_TRUE(std::ranges::any_of(groups, [](const auto& group) { return group.port_count == pon_ports; }));
    set_fault("ont_los", "3");
    set_fault("ont_moved", "4/1", 9);
    set_fault("pppoe_blocked", "5/2/1");
    pass(28min); // leases have just been renewed
    check();
    // ONTs change their numbers: whoever comes to a place takes it over with all that belongs to it.
    configure([](auto& configuration) {
        std::swap(configuration.onts[0].serial, configuration.onts[1].serial);
        configuration.onts[200] = std::exchange(configuration.onts[2], {});
        configuration.onts.take(2);
    });
    check();
    pass(1min);
    check();
    set_front_ports(false);
    pass(50min);
    happen(&Plant::clear_all_faults);
    set_front_ports(true);
    pass(10min);
    check();
}

} // namespace
} // namespace xpon::simulator
