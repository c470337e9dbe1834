#include "tests/unit/simulator/live_olt.hpp"

#include <cerrno>

#include <gmock/gmock.h>

namespace xpon::simulator {
namespace {

class LiveOntCountersTest : public LiveOltTest {
protected:
    template <class Record>
    Block<Record> read(Ont_information_kind kind, unsigned port, unsigned ont) {
        void* out = nullptr;
        errno = 0;
        custom_layer__get_ont_information_by_index(ipc(), kind, static_cast<std::uint8_t>(port),
                                                   static_cast<std::uint16_t>(ont), &out);
        return Block<Record>(static_cast<Record*>(out));
    }
    auto pon() {
        return read<Ont__get_pon_counters_response>(ont_information_olt_pon, served.port, served.ont);
    }
};

TEST_F(LiveOntCountersTest, CountAsTimePassesAndFollowCommits) {
    const auto before = pon();
    ASSERT_NE(before, nullptr);
    must({"step", "3600"});
    const auto after = pon();
    // The factory's template: data, television, telephone and management, some Mbit/s in all.
    EXPECT_GT(after->tx_bytes, before->tx_bytes + std::uint64_t{3600} * 500'000);
    EXPECT_LT(after->tx_bytes, before->tx_bytes + std::uint64_t{3600} * 4'000'000);
    const auto gem_ports =
        read<Ont__get_gem_port_counters_response>(ont_information_olt_gem_port, served.port, served.ont);
    ASSERT_EQ(gem_ports->count, 6);
    EXPECT_EQ(gem_ports->entries[5].gem_port, 4095);
    const auto history = read<Ont_gem_port_pm>(ont_information_gem_port_pm, served.port, served.ont);
    ASSERT_EQ(history->count, 4);
    EXPECT_GT(history->received_packets[0], 0U);

    // The PON state machine is told of services: the ONT is configured anew and goes on counting.
    edit<cfgdb::ProfileOntCrossConnect>(getDb_CommonGCfg_profiles_profiles_ont_cross_connect,
                                        setDb_CommonGCfg_profiles_profiles_ont_cross_connect, 1,
                                        [](auto& profile) { profile.s_vid = 1234; });
    commit();
    EXPECT_EQ(pon()->tx_bytes, 0U);
    must({"step", "10"});
    EXPECT_GE(pon()->tx_bytes, after->tx_bytes);
    edit<cfgdb::ProfileOntManagementCfg>(getDb_CommonGCfg_profiles_profiles_ont_management,
                                         setDb_CommonGCfg_profiles_profiles_ont_management, 1,
                                         [](auto& profile) { profile.pm_collection = 0; });
    commit();
    must({"step", "10"});
    EXPECT_EQ(ont_states()[served], "OPERATIONAL");
    EXPECT_EQ(pon()->tx_bytes, 0U);
}

TEST_F(LiveOntCountersTest, AnswerForEveryPlaceAndNoOther) {
    for (unsigned kind = ont_information_gem_port_pm; kind <= ont_information_olt_pon; ++kind) {
        const auto asked = static_cast<Ont_information_kind>(kind);
        EXPECT_NE(read<void>(asked, 1, 1), nullptr) << kind;
        EXPECT_NE(read<void>(asked, 16, 256), nullptr) << kind; // nobody is there: zero
        for (const auto& [port, ont] : {std::pair(0U, 1U), {17U, 1U}, {1U, 0U}, {1U, 257U}, {255U, 65535U}}) {
            EXPECT_EQ(read<void>(asked, port, ont), nullptr);
            EXPECT_EQ(errno, ERANGE);
        }
    }
}

} // namespace
} // namespace xpon::simulator
