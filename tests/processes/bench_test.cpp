#include "tests/processes/live_olt.hpp"

#include <string>
#include <vector>

#include <gmock/gmock.h>

namespace xpon::simulator {
namespace {

using testing::HasSubstr;

/// ONTs 1/1 to 1/3 are in service, 1/4 is not configured.
class BenchTest : public LiveOltTest {};

TEST_F(BenchTest, OntsComeGoAndChangePlaces) {
    must({"power", "ont", "1/1", "off"});
    EXPECT_EQ(ont_states().count(served), 0U);
    EXPECT_EQ(ont_states().size(), 45U);
    must({"power", "all", "off"});
    EXPECT_TRUE(ont_states().empty());
    must({"power", "pon", "1", "on"});
    must({"step", "300"});
    EXPECT_EQ(ont_states().size(), 3U);
    must({"at", "10", "add", "1/9", "model", "SIM-ONT-1"});
    must({"swap", "1/1", "serial", "ACME0000BEEF"});
    must({"move", "1/2", "3"});
    must({"step", "300"});
    EXPECT_EQ(ont_states().size(), 1U);
    EXPECT_EQ(unactivated("1"), 3U);
    EXPECT_EQ(unactivated("3"), 1U);
    EXPECT_THAT(command({"state", "ont", "1/1"}), HasSubstr(R"("serial":"ACME0000BEEF")"));
    EXPECT_THAT(command({"state", "pon", "3"}), HasSubstr(R"("ont":"1/2","serial":"SIMUA0010002")"));
    must({"move", "1/2", "1"});
    must({"step", "300"});
    EXPECT_THAT(command({"state", "subscribers"}), HasSubstr(R"("service":"1/2/4")"));
}

TEST_F(BenchTest, RefusesWhatIsNotThere) {
    const std::pair<std::vector<std::string>, const char*> cases[] = {
        {{"fault", "ont_los", "1/9"}, "there is no ONT 1/9"},
        {{"fault", "pppoe_blocked", "2/256/1"}, "there is no ONT 2/256"},
        {{"fault", "module_hot", "front/8"}, "there is no module in front/8"},
        {{"power", "ont", "1/9", "off"}, "there is no ONT 1/9"},
        {{"power", "all", "of"}, "power must be on or off"},
        {{"add", "1/2"}, "there is an ONT 1/2 already"},
        {{"add", "1/9", "model", "none"}, "this plant has no model 'none'"},
        {{"swap", "1/1", "serial", "SIMUA0010002"}, "ONT 1/2 has this serial number already"},
        {{"move", "1/1", "1"}, "ONT 1/1 is on PON port 1 already"},
        {{"state", "ont", "1/9"}, "there is no ONT 1/9"},
    };
    for (const auto& [words, complaint] : cases) {
        EXPECT_THAT(command(words), HasSubstr(complaint));
    }
}

} // namespace
} // namespace xpon::simulator
