#include "tests/processes/live_olt.hpp"

#include <string>
#include <vector>

#include <gmock/gmock.h>

namespace xpon::simulator {
namespace {

using testing::HasSubstr;

class ScenarioTest : public LiveOltTest {
protected:
    explicit ScenarioTest(const std::vector<std::string>& options = {"--onts", "64", "--configured", "48"})
        : LiveOltTest(options) {}

    /// Exit status and output.
    static std::pair<int, std::string> run(const std::string& file) {
        test::Process program({OLT_SIM, "run", file}, {});
        const auto status = program.wait().value_or(-1);
        return {status, program.output()};
    }
    std::pair<int, std::string> run_text(const std::string& text) {
        root.write("mine.scenario", text);
        return run((root.path() / "mine.scenario").string());
    }
};

class FullPortTest : public ScenarioTest {
protected:
    FullPortTest() : ScenarioTest({"--plant", "full"}) {}
};

class StreetTest : public ScenarioTest {
protected:
    StreetTest() : ScenarioTest({"--plant", "demo"}) {}
};

TEST_F(FullPortTest, LosesItsFibreAndComesBack) {
    const auto [status, output] = run(SCENARIOS "/fibre-cut.scenario");
    EXPECT_EQ(status, 0) << output;
}

TEST_F(StreetTest, LosesItsPowerAndComesBack) {
    const auto [status, output] = run(SCENARIOS "/street-power-failure.scenario");
    EXPECT_EQ(status, 0) << output;
}

TEST_F(ScenarioTest, TheOltGetsAnotherFirmware) {
    test::Process maker({OLT_SIM, "make-image", "--version", "2.0.0.1", (root.path() / "firmware/new.img").string()},
                        {});
    ASSERT_EQ(maker.wait(), 0);
    const auto [status, output] = run(SCENARIOS "/firmware-upgrade.scenario");
    EXPECT_EQ(status, 0) << output;
    EXPECT_THAT(command({"state"}), HasSubstr("2.0.0.1"));
}

TEST_F(ScenarioTest, FailsWithTheConditionThatDidNotComeTrue) {
    const struct {
        const char* text;
        int status;
        const char* output;
    } cases[] = {
        {"repeat 2\n  repeat 2\n step 1\n end\nend\nexpect summary time_s is 263524\n", 0, ""},
        {"\nexpect ont 1/1 state is GONE else it is there\n", 3, "line 2: it is there: state is 'OPERATIONAL'"},
        {"wait-until pon 1 onts_by_state.POPUP at-least 1 within 2.5\n", 3, "line 1: not within 2.5 s: wait-until"},
        {"expect ont 9/99 state is GONE\n", 1, "there is no ONT 9/99"},
        {"repeat 2\nstep 1\n", 2, "Line 1: this loop has no end"},
        {"expect summary booting was true\n", 2, "Line 1: 'was' is none of is"},
        {"wait-until summary booting is true\n", 2, "Line 1: wait-until ends with"},
    };
    for (const auto& [text, status, output] : cases) {
        const auto result = run_text(text);
        EXPECT_EQ(result.first, status) << text;
        EXPECT_THAT(result.second, HasSubstr(output));
    }
}

} // namespace
} // namespace xpon::simulator
