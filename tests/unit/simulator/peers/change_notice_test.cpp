#include "simulator/peers/change_notice.hpp"
#include "xpon/peer_side/elements.hpp"

#include <gtest/gtest.h>

namespace xpon::simulator {
namespace {

using service::Config_change;

/// The elements of the configuration, by their positions in the list.
#define XPON_NAME_POSITION(suffix, record, depth, size1, size2, path) suffix,
enum ElementPosition : std::uint16_t { XPON_CFGDB_ELEMENTS(XPON_NAME_POSITION) };
#undef XPON_NAME_POSITION

TEST(ChangeNoticeTest, SaysHowManyRecordsOfEachElementChanged) {
    const Config_change changes[] = {{ZebGCfg_pon_ont, {0, 0}},
                                     {CommonGCfg_hostname, {0, 0}},
                                     {ZebGCfg_pon_ont, {4095, 0}},
                                     {ZebGCfg_pon_ont_ont_common_service, {0, 7}}};
    const auto parsed = parse_change_notice(std::as_bytes(std::span(changes)));
    ASSERT_TRUE(parsed);
    EXPECT_EQ(summary_of(*parsed), "ZebGCfg.pon.ont=2 ZebGCfg.pon.ont.service=1 CommonGCfg.hostname=1");
}

TEST(ChangeNoticeTest, RefusesWhatIsNoNotice) {
    const Config_change unknown[] = {{1, {0, 0}}, {0xffff, {0, 0}}};
    EXPECT_FALSE(parse_change_notice(std::as_bytes(std::span(unknown))));
    const auto bytes = std::as_bytes(std::span(unknown));
    for (std::size_t size = 1; size < sizeof(Config_change); ++size) {
        EXPECT_FALSE(parse_change_notice(bytes.first(size)));
    }
}

} // namespace
} // namespace xpon::simulator
