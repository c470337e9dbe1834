#include "simulator/files/event_log.hpp"
#include "tests/support/temporary_olt_root.hpp"

#include <gmock/gmock.h>

namespace xpon::simulator {
namespace {

TEST(EventLogTest, IsBoundedAndSurvivesALostFolder) {
    const test::TemporaryOltRoot root;
    const EventLog log(root.path() / "events.log");
    const std::string text(100'000, 'x');
    for (int event = 0; event < 30; ++event) {
        log.write(text);
    }
    EXPECT_LT(std::filesystem::file_size(root.path() / "events.log"), 1'200'000U);
    EXPECT_LT(std::filesystem::file_size(root.path() / "events.log.1"), 1'200'000U);
    log.write("one\nline\x1b[2J\x7f");
    EXPECT_THAT(root.read("events.log"), testing::EndsWith("Z one?line?[2J?\n"));
    std::filesystem::remove_all(root.path());
    log.write("lost");
}

} // namespace
} // namespace xpon::simulator
