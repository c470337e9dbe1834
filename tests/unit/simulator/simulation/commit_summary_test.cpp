#include "simulator/simulation/commit_summary.hpp"
#include "xpon/peer_side/elements.hpp"

#include <gtest/gtest.h>

namespace xpon::simulator {
namespace {

using service::Config_change;

/// The elements of the configuration, by their positions in the list.
#define XPON_NAME_POSITION(suffix, record, depth, size1, size2, path) suffix,
enum ElementPosition : std::uint16_t { XPON_CFGDB_ELEMENTS(XPON_NAME_POSITION) };
#undef XPON_NAME_POSITION

TEST(CommitSummaryTest, SaysHowManyRecordsOfEachElementChanged) {
    const Config_change changes[] = {{ZebGCfg_pon_ont, {0, 0}},
                                     {CommonGCfg_hostname, {0, 0}},
                                     {ZebGCfg_pon_ont, {4095, 0}},
                                     {ZebGCfg_pon_ont_ont_common_service, {0, 7}},
                                     {0xffff, {0, 0}}}; // of another release
    EXPECT_EQ(summary_of(changes), "ZebGCfg.pon.ont=2 ZebGCfg.pon.ont.service=1 CommonGCfg.hostname=1");
}

} // namespace
} // namespace xpon::simulator
