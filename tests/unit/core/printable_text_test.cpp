#include "xpon/core/printable_text.hpp"

#include <utility>

#include <gtest/gtest.h>

namespace xpon::core {
namespace {

using namespace std::string_literals;

TEST(PrintableText, KeepsPrintableUtf8AndEscapesTheRest) {
    const std::pair<std::string, std::string> cases[] = {
        {"", ""},
        {"HG8310M \"a\\b\" ~", "HG8310M \"a\\b\" ~"},
        {"\xc2\xa0 \xd0\x96 \xe2\x82\xac \xf0\x9f\x98\x80 \xf4\x80\x80\x80",
         "\xc2\xa0 \xd0\x96 \xe2\x82\xac \xf0\x9f\x98\x80 \xf4\x80\x80\x80"},
        {"a\0\t\x1b[2J\x7f"s, R"(a\x00\x09\x1B[2J\x7F)"},
        {"\xc2\x9b", R"(\xC2\x9B)"},
        {"\xe2\x80\xa8\xe2\x80\xae\xe2\x81\xa6", R"(\xE2\x80\xA8\xE2\x80\xAE\xE2\x81\xA6)"},
        {"\xff\xfe\x80z", R"(\xFF\xFE\x80z)"},
        {"\xc0\xaf \xe0\x80\xaf \xf0\x80\x80\xaf", R"(\xC0\xAF \xE0\x80\xAF \xF0\x80\x80\xAF)"}, // overlong
        {"\xed\xa0\x80 \xef\xbf\xbf \xf4\x90\x80\x80", R"(\xED\xA0\x80 \xEF\xBF\xBF \xF4\x90\x80\x80)"},
        {"\xe2\x82", R"(\xE2\x82)"}, // cut off at the end
        {"\xe2\x82 x\xf0\x9f\x98\xc3\xa9", "\\xE2\\x82 x\\xF0\\x9F\\x98\xc3\xa9"},
    };
    for (const auto& [text, printable] : cases) {
        EXPECT_EQ(printable_text(text), printable);
        EXPECT_EQ(printable_text(printable), printable) << "printable texts stay";
    }
}

TEST(PrintableText, CutsBetweenCharactersAndTellsTheSize) {
    const auto euros = "a\xe2\x82\xac\xe2\x82\xac"s;
    EXPECT_EQ(printable_text(euros, 7), euros);
    EXPECT_EQ(printable_text(euros, 6), "a\xe2\x82\xac..(7 bytes)");
    EXPECT_EQ(printable_text(euros, 0), "..(7 bytes)");
    EXPECT_EQ(quoted_text(""), R"("")");
    EXPECT_EQ(quoted_text("a\" user \"b\\\n"), R"("a\x22 user \x22b\x5C\x0A")");
    EXPECT_EQ(quoted_text(std::string(3'000'000, 'a'), 3), R"("aaa"..(3000000 bytes))");
}

} // namespace
} // namespace xpon::core
