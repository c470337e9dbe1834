#include "client/oltctl/configuration/assignment.hpp"
#include "client/oltctl/configuration/index_list.hpp"
#include "client/oltctl/failure.hpp"
#include "client/oltctl/output/table.hpp"
#include "client/oltctl/output/tree.hpp"
#include "client/oltctl/session/private_file.hpp"
#include "tests/support/temporary_olt_root.hpp"
#include "xpon/client/serial_number.hpp"

#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace xpon::oltctl {
namespace {

using Lists = std::vector<std::string>;

TEST(IndexLists, StandForExactlyTheirIndices) {
    // A full rectangle, one with a hole, single points; with one, two and three levels.
    const std::vector<std::vector<Lists>> cases{
        {{"1-4,7"}},
        {{"1-16", "1-256"}},
        {{"1-2", "1-8"}, {"3", "2,9"}},
        {{"1-16", "1-256", "1-8"}},
        {{"1", "1", "1-7"}, {"1", "2-3", "8"}, {"5,9", "2-3", "8"}},
    };
    for (const auto& groups : cases) {
        std::set<Index> wanted;
        for (const auto& lists : groups) {
            const auto indices = indices_of(lists);
            wanted.insert(indices.begin(), indices.end());
        }
        std::set<Index> found;
        const std::vector<Index> ascending(wanted.begin(), wanted.end());
        const auto depth = static_cast<unsigned>(groups.front().size());
        const auto all = lists_of(ascending, depth);
        std::size_t count = 0;
        for (const auto& lists : all) {
            EXPECT_EQ(lists.size(), depth);
            const auto indices = indices_of(lists);
            count += indices.size();
            found.insert(indices.begin(), indices.end());
        }
        EXPECT_EQ(found, wanted);
        EXPECT_EQ(count, wanted.size()) << "an index is there twice";
        EXPECT_LE(all.size(), groups.size());
    }
}

TEST(IndexLists, OthersAreRefused) {
    for (const auto* text : {"", "0", "4097", "1,", ",1", "3-1", "1-", "-1", "a", "1 2", "99999999999"}) {
        EXPECT_THROW(numbers_of(text), Failure) << text;
    }
}

TEST(Serials, AreReadAndWritten) {
    struct Case {
        const char* text;
        const char* shown; ///< null: it is refused
    };
    for (const auto& [text, shown] :
         {Case{"SIMUA0030011", "SIMUA0030011"}, Case{"simua003001f", "simuA003001F"},
          Case{"53494D55A0030011", "SIMUA0030011"}, Case{"0001020304050607", "0001020304050607"},
          Case{"0000000000000000", ""}, Case{"SIMUA003001", nullptr}, Case{"", nullptr}, Case{"SIMUA003001G", nullptr},
          Case{"SIMU-0030011", nullptr}}) {
        const auto bytes = client::parse_serial(text);
        ASSERT_EQ(bytes != nullptr, shown != nullptr) << text;
        if (bytes) {
            EXPECT_EQ(cJSON_GetArraySize(bytes.get()), 10);
            EXPECT_EQ(client::serial_text(bytes.get()), shown);
        }
    }
}

TEST(Assignments, ReachEveryKey) {
    const core::JsonTree record(cJSON_Parse(R"({"enabled": false, "servers": [{"address": "a"}], "name": ""})"));
    for (const auto* assignment : {"enabled=true", "servers.0.address=b", "servers.1.address=c=d", "new.0.x=5",
                                   "name=5 m", "serial=SIMUA0030011", "text=\"7\"", "none="}) {
        assign(record.get(), assignment);
    }
    EXPECT_STREQ(core::print_line(record.get()).get(),
                 R"({"enabled":true,"servers":[{"address":"b"},{"address":"c=d"}],"name":"5 m","new":[{"x":5}],)"
                 R"("serial":[83,73,77,85,160,3,0,17,0,0],"text":"7","none":""})");
    for (const auto* assignment : {"servers.5.address=x", "servers.x=1", "enabled.x=1", "=1", "name..x=1"}) {
        EXPECT_THROW(assign(record.get(), assignment), Failure) << assignment;
    }
}

TEST(Tables, AreCutAtTheTerminalsWidthBetweenCharacters) {
    const core::JsonTree rows(cJSON_Parse(R"([{"a": 5, "b": {"c": "grün"}}, {"a": 10, "b": {"c": "äöüßäöüß"}}])"));
    const std::vector<const cJSON*> pointers{rows->child, rows->child->next};
    constexpr Column columns[] = {{"N", "a", nullptr, true}, {"Nothing", "x"}, {"Text", "b.c"}};
    EXPECT_EQ(table_of(pointers, columns, 80), " N  Text\n 5  grün\n10  äöüßäöüß\n");
    EXPECT_EQ(table_of(pointers, columns, 7), " N  Tex\n 5  grü\n10  äöü\n");
    EXPECT_EQ(table_of({}, columns, 80), "N: none\n");
}

TEST(Trees, ShowObjectsWithTheSameKeysSideBySide) {
    const core::JsonTree same(
        cJSON_Parse(R"({"service 1": {"Packets": 5, "Lost": 0}, "MC": {"Packets": 123, "Lost": 7}})"));
    EXPECT_EQ(tree_of(same.get(), 2), "           service 1   MC\n"
                                      "  Packets          5  123\n"
                                      "  Lost             0    7\n");
    const core::JsonTree others(cJSON_Parse(R"({"a": {"x": 1}, "b": {"y": 2}})"));
    EXPECT_EQ(tree_of(others.get()), "a:\n  x  1\nb:\n  y  2\n");
}

TEST(PrivateFiles, AreReadOnlyWhenNobodyElseCan) {
    const test::TemporaryOltRoot folder;
    const auto path = folder.path() / "secret";
    write_private_file(path, "text\n");
    EXPECT_EQ(std::filesystem::status(path).permissions(), std::filesystem::perms(0600));
    EXPECT_EQ(read_private_file(path), "text\n");
    std::filesystem::create_symlink(path, folder.path() / "link");
    EXPECT_THROW(read_private_file(folder.path() / "link"), Failure);
    std::filesystem::permissions(path, std::filesystem::perms(0640));
    EXPECT_THROW(read_private_file(path), Failure);
}

} // namespace
} // namespace xpon::oltctl
