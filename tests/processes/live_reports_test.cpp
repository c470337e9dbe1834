#include "tests/processes/live_olt.hpp"
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

class LiveReportsTest : public LiveOltTest {
protected:
    /// Those who tell the plant of a commit are not those who are asked here; they have done so once they answer.
    void commit_everywhere() {
        commit();
        EXPECT_FALSE(ont_states().empty());
        EXPECT_EQ(errno_of_environment(), 0);
        Bitmap_uplink_port_range up;
        EXPECT_EQ(custom_layer__get_front_ports_link_states(ipc(), &up), 0);
    }
    template <class Record>
    Block<Record> counters(Ont_information_kind kind, unsigned port, unsigned ont) {
        void* out = nullptr;
        errno = 0;
        custom_layer__get_ont_information_by_index(ipc(), kind, static_cast<std::uint8_t>(port),
                                                   static_cast<std::uint16_t>(ont), &out);
        return Block<Record>(static_cast<Record*>(out));
    }
};

TEST_F(LiveReportsTest, SessionsFollowTimeFaultsAndCommits) {
    const auto leases = [this] { return list_of<Dhcp_get_sessions_msg>(custom_layer__get_dhcp_session, ipc()); };
    const auto sessions = [this] { return list_of<Pppoe_get_sessions_msg>(custom_layer__get_pppoe_session, ipc()); };
    const auto is_served = testing::AllOf(Field(&Dhcp_session::pon_port, 1), Field(&Dhcp_session::ont_id, 1));
    EXPECT_THAT(leases(), Contains(is_served));
    const auto before = sessions().at(0);
    must({"step", "5"});
    EXPECT_EQ(sessions().at(0).duration_sec, before.duration_sec + 5);
    must({"fault", "pppoe_blocked", "1/1/1"});
    EXPECT_EQ(sessions().at(0).session_id, 0);

    unsigned short index = record_index_of(served);
    ASSERT_EQ(setDb_init_ZebGCfg_pon_ont(database->handle(), database->context(), &index), 0);
    commit_everywhere();
    EXPECT_EQ(sessions().at(0).ont_id, 2);
    EXPECT_THAT(leases(), Not(Contains(is_served)));
}

TEST_F(LiveReportsTest, AddressesAndGroupsFollowCommits) {
    const auto addresses = [this] { return list_of<Bcm_get_mac_table_response>(custom_layer__get_mac_table, ipc()); };
    /// Where the first member of the first group of television is.
    const auto member = [this] {
        Igmp_vlan_info* info = nullptr;
        EXPECT_EQ(custom_layer__get_igmp_snooping_groups_unsafe(ipc(), 201, &info), 0);
        const Block<Igmp_vlan_info> owner(info);
        return info != nullptr && info->group_count != 0 ? info->groups[0].ports[0].kind : switch_port_cpu;
    };
    EXPECT_THAT(addresses(), Contains(Field(&Bcm_mac_entry::kind, switch_port_front)));
    EXPECT_EQ(member(), switch_port_pon);
    Bitmap_ont_range range;
    ASSERT_EQ(get_parsed_ont_range("1/1", &range), 0);
    EXPECT_THAT(list_of<Bcm_get_mac_table_response>(custom_layer__get_mac_table_by_ont_range, ipc(), &range),
                testing::AllOf(Contains(Field(&Bcm_mac_entry::gem, 512)), Each(Field(&Bcm_mac_entry::ont_id, 1))));

    edit<cfgdb::GSystemManagement>(getDb_CommonGCfg_management, setDb_CommonGCfg_management, 0, [](auto& management) {
        management.enabled = 1;
        management.ip_address = 0x0a000002;
    });
    edit<cfgdb::PortChannel>(getDb_ZebGCfg_switch_config_lag_port_channel, setDb_ZebGCfg_switch_config_lag_port_channel,
                             4, [](auto& channel) {
                                 channel.enabled = 1;
                                 channel.members = 0b1111;
                             });
    edit<cfgdb::FrontPort>(getDb_ZebGCfg_switch_config_front_port, setDb_ZebGCfg_switch_config_front_port, 5,
                           [](auto& port) { port.multicast_router = cfgdb::FrontPort::MulticastRouter::always; });
    commit_everywhere();
    EXPECT_THAT(addresses(),
                Contains(testing::AllOf(Field(&Bcm_mac_entry::svid, 4000), Field(&Bcm_mac_entry::kind, switch_port_cpu),
                                        Field(&Bcm_mac_entry::type, mac_entry_static))));
    EXPECT_THAT(addresses(), Contains(Field(&Bcm_mac_entry::kind, switch_port_channel)));
    EXPECT_THAT(addresses(), Not(Contains(Field(&Bcm_mac_entry::kind, switch_port_front))));
    EXPECT_EQ(member(), switch_port_front);
}

TEST_F(LiveReportsTest, CountersAnswerForEveryPlaceAndNoOther) {
    for (unsigned kind = ont_information_gem_port_pm; kind <= ont_information_olt_pon; ++kind) {
        const auto asked = static_cast<Ont_information_kind>(kind);
        EXPECT_NE(counters<void>(asked, 1, 1), nullptr) << kind;
        EXPECT_NE(counters<void>(asked, 16, 256), nullptr) << kind; // nobody is there: zero
        for (const auto& [port, ont] : {std::pair(0U, 1U), {17U, 1U}, {1U, 0U}, {1U, 257U}, {255U, 65535U}}) {
            EXPECT_EQ(counters<void>(asked, port, ont), nullptr);
            EXPECT_EQ(errno, ERANGE);
        }
    }
}

} // namespace
} // namespace xpon::simulator
