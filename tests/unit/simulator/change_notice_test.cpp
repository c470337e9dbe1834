#include "simulator/peers/change_notice.hpp"
#include "simulator/simulation/event_log.hpp"
#include "tests/support/temporary_olt_root.hpp"
#include "tests/unit/simulator/element_positions.hpp"

#include <gmock/gmock.h>

namespace xpon::simulator {
namespace {

using service::Config_change;

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

TEST(EventLogTest, IsBoundedAndSurvivesALostFolder) {
    const test::TemporaryOltRoot root;
    const EventLog log(root.path() / "events.log");
    const std::string text(100'000, 'x');
    for (int event = 0; event < 30; ++event) {
        log.write(text);
    }
    EXPECT_LT(std::filesystem::file_size(root.path() / "events.log"), 1'200'000U);
    EXPECT_LT(std::filesystem::file_size(root.path() / "events.log.1"), 1'200'000U);
    std::filesystem::remove_all(root.path());
    log.write("lost");
}

} // namespace
} // namespace xpon::simulator
