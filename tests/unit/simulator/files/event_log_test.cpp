#include "simulator/files/event_log.hpp"
#include "tests/support/temporary_olt_root.hpp"

#include <gtest/gtest.h>

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
    std::filesystem::remove_all(root.path());
    log.write("lost");
}

} // namespace
} // namespace xpon::simulator
