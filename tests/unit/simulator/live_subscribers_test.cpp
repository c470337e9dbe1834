#include "tests/unit/simulator/live_olt.hpp"
#include "xpon/custom_layer/subscribers.h"

#include <cerrno>

#include <gmock/gmock.h>

namespace xpon::simulator {
namespace {

using testing::Contains;
using testing::Each;
using testing::Field;
using testing::Not;

/// The entries of a list that a call of the custom layer gives.
template <class Response, class Call, class... Arguments>
auto list_of(Call call, const Arguments&... arguments) {
    Response* response = nullptr;
    EXPECT_EQ(call(arguments..., &response), 0) << errno;
    const Block<Response> owner(response);
    using Entry = std::remove_pointer_t<decltype(Response::entries)>;
    return response == nullptr ? std::vector<Entry>{}
                               : std::vector<Entry>(response->entries, response->entries + response->count);
}

class LiveSubscribersTest : public LiveOltTest {
protected:
    /// Those who tell the plant of a commit are not those who are asked here; they have done so once they answer.
    void commit_everywhere() {
        commit();
        EXPECT_FALSE(ont_states().empty());
        EXPECT_EQ(errno_of_environment(), 0);
        Bitmap_uplink_port_range up;
        EXPECT_EQ(custom_layer__get_front_ports_link_states(ipc(), &up), 0);
    }
    [[nodiscard]] std::vector<Dhcp_session> leases() const {
        return list_of<Dhcp_get_sessions_msg>(custom_layer__get_dhcp_session, ipc());
    }
    [[nodiscard]] std::vector<Pppoe_session> sessions() const {
        return list_of<Pppoe_get_sessions_msg>(custom_layer__get_pppoe_session, ipc());
    }
    [[nodiscard]] std::vector<Bcm_mac_entry> addresses() const {
        return list_of<Bcm_get_mac_table_response>(custom_layer__get_mac_table, ipc());
    }
    [[nodiscard]] std::vector<Bcm_mac_entry> addresses_of(const char* onts) const {
        Bitmap_ont_range range;
        EXPECT_EQ(get_parsed_ont_range(onts, &range), 0);
        return list_of<Bcm_get_mac_table_response>(custom_layer__get_mac_table_by_ont_range, ipc(), &range);
    }
    /// From the answer that is kept.
    [[nodiscard]] Block<Igmp_vlan_info> groups_of(std::uint16_t vlan) const {
        Igmp_vlan_info* info = nullptr;
        custom_layer__get_igmp_snooping_groups_unsafe(ipc(), vlan, &info);
        return Block<Igmp_vlan_info>(info);
    }
};

TEST_F(LiveSubscribersTest, SessionsFollowTimeFaultsAndCommits) {
    const auto lease = leases().at(0);
    const auto session = sessions().at(0);
    EXPECT_EQ(session.pon_port, 1);
    EXPECT_EQ(session.gem_port, 512);
    EXPECT_NE(session.session_id, 0);
    must({"step", "5"});
    EXPECT_EQ(sessions().at(0).duration_sec, session.duration_sec + 5);
    // Five seconds less, or just renewed.
    EXPECT_THAT(leases().at(0).life_time_msec, testing::AnyOf(lease.life_time_msec - 5000, testing::Gt(3'595'000U)));

    must({"fault", "pppoe_blocked", "1/1/1"});
    must({"step", "10"});
    EXPECT_EQ(sessions().at(0).session_id, 0);
    EXPECT_EQ(sessions().at(0).unblock_rest_sec, 290U);
    must({"clear", "pppoe_blocked", "1/1/1"});

    edit_ont(served, [](auto& ont) { ont.enabled = 0; });
    commit_everywhere();
    EXPECT_EQ(sessions().at(0).ont_id, 2);
    EXPECT_EQ(leases().at(0).ont_id, 1); // until it ends
    unsigned short index = record_index_of(served);
    ASSERT_EQ(setDb_init_ZebGCfg_pon_ont(database->handle(), database->context(), &index), 0);
    commit_everywhere();
    EXPECT_NE(std::pair(leases().at(0).pon_port, leases().at(0).ont_id), std::pair(std::uint8_t{1}, std::uint16_t{1}));
}

TEST_F(LiveSubscribersTest, AddressesFollowCommits) {
    const auto is_cpu = Field(&Bcm_mac_entry::kind, switch_port_cpu);
    const auto is_channel = Field(&Bcm_mac_entry::kind, switch_port_channel);
    EXPECT_THAT(addresses(), Contains(Field(&Bcm_mac_entry::kind, switch_port_front)));
    EXPECT_THAT(addresses(), Not(Contains(testing::AnyOf(is_cpu, is_channel))));
    EXPECT_THAT(addresses_of("1/1"), Contains(Field(&Bcm_mac_entry::gem, 512)));
    EXPECT_THAT(addresses_of("1/1"),
                Each(testing::AllOf(Field(&Bcm_mac_entry::number, 1), Field(&Bcm_mac_entry::ont_id, 1))));

    edit<cfgdb::GSystemManagement>(getDb_CommonGCfg_management, setDb_CommonGCfg_management, 0, [](auto& management) {
        management.enabled = 1;
        management.ip_address = 0x0a000002;
    });
    edit<cfgdb::PortChannel>(getDb_ZebGCfg_switch_config_lag_port_channel, setDb_ZebGCfg_switch_config_lag_port_channel,
                             4, [](auto& channel) {
                                 channel.enabled = 1;
                                 channel.members = 0b1111;
                             });
    commit_everywhere();
    const auto table = addresses();
    EXPECT_THAT(table, Contains(testing::AllOf(is_cpu, Field(&Bcm_mac_entry::svid, 4000))));
    EXPECT_THAT(table, Contains(testing::AllOf(is_channel, Field(&Bcm_mac_entry::number, 5),
                                               Field(&Bcm_mac_entry::svid, 100))));
    EXPECT_THAT(table, Not(Contains(Field(&Bcm_mac_entry::kind, switch_port_front))));
}

TEST_F(LiveSubscribersTest, GroupsAreThoseOfTheLastRefresh) {
    ASSERT_EQ(custom_layer__refresh_igmp_snooping_groups(ipc()), 0);
    const auto television = groups_of(201);
    ASSERT_TRUE(television);
    EXPECT_EQ(television->is_snooping, 1);
    ASSERT_GT(television->group_count, 0);
    EXPECT_EQ(television->groups[0].ports[0].kind, switch_port_pon);
    EXPECT_EQ(groups_of(100)->is_snooping, 0);
    EXPECT_EQ(groups_of(100)->group_count, 0);

    edit<cfgdb::FrontPort>(getDb_ZebGCfg_switch_config_front_port, setDb_ZebGCfg_switch_config_front_port, 2,
                           [](auto& port) { port.multicast_router = cfgdb::FrontPort::MulticastRouter::always; });
    commit_everywhere();
    EXPECT_EQ(groups_of(201)->groups[0].ports[0].kind, switch_port_pon);
    ASSERT_EQ(custom_layer__refresh_igmp_snooping_groups(ipc()), 0);
    const auto router = groups_of(201)->groups[0].ports[0];
    EXPECT_EQ(router.kind, switch_port_front);
    EXPECT_EQ(router.number, 3);
    EXPECT_EQ(router.is_static, 1);

    must({"fault", "peer_error", "igmp", "value", std::to_string(ENOSPC)});
    EXPECT_EQ(custom_layer__refresh_igmp_snooping_groups(ipc()), 0);
    EXPECT_FALSE(groups_of(201));
    EXPECT_EQ(errno, ENOSPC);
}

} // namespace
} // namespace xpon::simulator
