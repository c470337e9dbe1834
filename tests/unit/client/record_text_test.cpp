#include "client/oltctl/configuration/records.hpp"
#include "client/oltctl/editing/record_text.hpp"

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace xpon::oltctl {
namespace {

using testing::HasSubstr;

constexpr auto ntp = "configuration.CommonGCfg.system.ntp";
constexpr auto ont = "configuration.ZebGCfg.pon.ont";

RecordTrees one(const char* record, const char* index = "") {
    RecordTrees records;
    records.emplace(index, cJSON_Parse(record));
    return records;
}

std::string printed(const RecordTrees& records, const std::string& index = "") {
    return core::print_line(records.at(index).get()).get();
}

TEST(EditedRecords, ReadBackAsTheyWereWritten) {
    const char* const records[] = {
        R"({"enabled":false,"servers":[],"min_poll":6,"interface":"any","utc_offset_min":-60})",
        R"({"enabled":true,"servers":[{"address":"1.2.3.4","version":4,"prefer":true},{"address":"#: -","version":3,"prefer":false}],"min_poll":6})",
    };
    for (const auto* record : records) {
        for (const auto notation : {Notation::yaml, Notation::json}) {
            const auto before = one(record);
            const auto text = text_of(ntp, before, notation);
            EXPECT_THAT(text, HasSubstr("# number 4 to 17; default 6"));
            EXPECT_EQ(printed(records_of(ntp, text, before)), record) << text;
        }
    }
    auto several = one(R"({"serial":[83,73,77,85,160,3,0,17,0,0],"description":"0049"})", "1/1");
    several.emplace("1/2", cJSON_Parse(R"({"serial":[0,0,0,0,0,0,0,0,0,0],"description":"a \"b\" ü"})"));
    for (const auto notation : {Notation::yaml, Notation::json}) {
        const auto text = text_of(ont, several, notation);
        EXPECT_THAT(text, HasSubstr("SIMUA0030011"));
        const auto read = records_of(ont, text, several);
        EXPECT_EQ(printed(read, "1/1"), printed(several, "1/1"));
        EXPECT_EQ(printed(read, "1/2"), printed(several, "1/2"));
    }
}

TEST(EditedRecords, TakeWhatPeopleWrite) {
    const auto before = one("{}");
    EXPECT_EQ(
        printed(
            records_of(ont, "description: 0049\nenabled: yes\nserial: SIMUA0030011\nont_template: 2\nx: y z", before)),
        R"({"description":"0049","enabled":true,"serial":[83,73,77,85,160,3,0,17,0,0],"ont_template":2,"x":"y z"})");
    EXPECT_EQ(printed(records_of(ntp, "{\"min_poll\": 5, 'interface': any}", before)),
              R"({"min_poll":5,"interface":"any"})");
    for (const auto* text : {"a: [", "just words", "- 1", "a: b: c", "'"}) {
        EXPECT_THROW(records_of(ntp, text, before), TextFault) << text;
    }
    EXPECT_THROW(records_of(ont, "1/2:\n  description: x", one("{}", "1/1")), TextFault);
}

TEST(EditedRecords, HaveRemarksBesideTheirFields) {
    const std::string text = "# comment\nmin_poll: 99\nservers:\n  - address: a\n    version: 9\n";
    const auto marked = with_remarks(text, {{.index = "", .field = "servers.0.version", .text = "too high"},
                                            {.index = "", .field = "min_poll", .text = "no"},
                                            {.index = "", .field = "servers.7.x", .text = "gone"}});
    EXPECT_EQ(marked, "# comment\n#! min_poll: no\nmin_poll: 99\n#! servers.7.x: gone\nservers:\n  - address: a\n"
                      "    #! servers.0.version: too high\n    version: 9\n");
    EXPECT_EQ(without_remarks(marked), text);
    EXPECT_EQ(with_remark("a: 1\n", {.line = 5, .text = "end"}), "a: 1\n#! end\n");
}

} // namespace
} // namespace xpon::oltctl
