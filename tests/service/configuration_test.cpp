// Reading, changing, committing: the way of a configuration through candidate and running.

#include "api_service/protocol/route_table.hpp"
#include "tests/service/monitoring_fixture.hpp"

#include <fmt/format.h>
#include <gmock/gmock.h>

namespace xpon::test {
namespace {

using testing::EndsWith;
using testing::HasSubstr;

class Configuration : public MonitoringTest {
protected:
    std::string hostname(const std::string& method, const std::string& members) {
        return request("configuration.CommonGCfg.hostname", method, members);
    }
    std::string onts(const std::string& method, const std::string& members) {
        return request("configuration.ZebGCfg.pon.ont", method, members);
    }
    std::string command(const std::string& name) {
        return request("command." + name, "command");
    }
};

TEST_F(Configuration, AChangeReachesRunningByCommitOnly) {
    const auto named = [&](const std::string& name) { return answer(R"({"hostname":")" + name + R"("})"); };
    EXPECT_EQ(hostname("set", R"("config_type":"candidate","data":{"hostname":"olt-7"})"), answer());
    EXPECT_EQ(hostname("get", R"("config_type":"running")"), named("olt"));
    EXPECT_EQ(hostname("get", R"("config_type":"candidate")"), named("olt-7"));
    EXPECT_EQ(command("rollback"), answer());
    EXPECT_EQ(hostname("get", R"("config_type":"candidate")"), named("olt"));
    EXPECT_EQ(hostname("set", R"("config_type":"candidate","data":{"hostname":"olt-8"})"), answer());
    EXPECT_EQ(command("commit"), answer());
    EXPECT_EQ(hostname("get", R"("config_type":"running")"), named("olt-8"));
}

TEST_F(Configuration, OneRequestSetsReadsAndDeletesManyOnts) {
    EXPECT_EQ(onts("set", R"("indices":["1","1-8"],"config_type":"candidate","data":{"description":"Flat"})"),
              answer());
    EXPECT_EQ(onts("delete", R"("indices":["1","3"],"config_type":"candidate")"), answer());
    const auto read = onts("get", R"("indices":["1","1-9"],"config_type":"candidate")");
    EXPECT_EQ(occurrences(read, R"("description":"Flat")"), 7U);
    EXPECT_EQ(occurrences(read, R"("description":"")"), 2U);
}

TEST_F(Configuration, RequestErrors) {
    const auto refused = [&](const std::string& method, const std::string& members, const std::string& text) {
        EXPECT_EQ(onts(method, members),
                  fmt::format(R"({{"success":false,"session_id":"{}","errors":[{{"message":{{"key":"{}",)"
                              R"("params":{{}}}},"path":"{}"}}]}})",
                              id, text, method));
    };
    const auto* const count = "Wrong number of indices";
    const auto* const type = "Configuration type is missing or wrong";
    refused("get", R"("indices":["1","1","1"],"config_type":"running")", count);
    refused("get", R"("indices":["1","1"])", type);
    refused("set", R"("indices":["1","1","1"],"config_type":"candidate","data":{})", count);
    refused("set", R"("indices":["1","1"],"data":{})", type);
    refused("delete", R"("indices":["1","1","1"],"config_type":"candidate")", count);
    refused("delete", R"("indices":["1","1"],"config_type":"running")", type);
}

TEST_F(Configuration, FieldErrorsComeBeforeTheConfigurationType) {
    EXPECT_THAT(hostname("set", R"("config_type":"running","data":{"hostname":""})"),
                HasSubstr(R"("key":"Text is too short, {p0} bytes of at least {p1}","params":{"p0":0,"p1":1}},)"
                          R"("path":"hostname")"));
    EXPECT_THAT(hostname("set", R"("config_type":"candidate")"), HasSubstr(R"("path":"data")"));
    EXPECT_EQ(hostname("set", R"("config_type":"running","data":{"hostname":"x"})"),
              failure("configuration.CommonGCfg.hostname"));
}

TEST_F(Configuration, EveryElementTakesWhatItGives) {
    const auto indices_of = [](std::string_view path) {
        return path.ends_with("pon.ont.service") ? R"("indices":["2","3","4"],)"
               : path.ends_with("pon.ont")       ? R"("indices":["2","3"],)"
               : path.starts_with("configuration.ZebGCfg") || path.find("profiles_ont") != path.npos
                   ? R"("indices":["1"],)"
                   : "";
    };
    int elements = 0;
    for (const auto& row : api_service::route_table()) {
        if (std::string_view(row.method) != "set") {
            continue;
        }
        ++elements;
        const auto route = [&](const char* method, const std::string& members) {
            return request(row.path, method, indices_of(row.path) + members);
        };
        const auto running = route("get", R"("config_type":"running")");
        EXPECT_EQ(route("get", R"("config_type":"candidate")"), running);
        auto record = running.substr(running.find(R"("data":)") + 7);
        record = record.front() == '[' ? record.substr(1, record.size() - 3) : record.substr(0, record.size() - 1);
        EXPECT_EQ(route("set", R"("config_type":"candidate","data":)" + record), answer()) << row.path;
        EXPECT_EQ(route("get", R"("config_type":"candidate")"), running);
        record.insert(1, R"("no such key":1,)");
        EXPECT_THAT(route("set", R"("config_type":"candidate","data":)" + record), HasSubstr("Unknown key {p0}"))
            << row.path;
    }
    EXPECT_EQ(elements, 17);
}

TEST_F(Configuration, EveryChangeLeavesOneLineWithoutItsData) {
    take_log();
    hostname("get", R"("config_type":"running")");
    onts("set", R"("indices":["2","5-6"],"config_type":"candidate","data":{"password":"sesame"})");
    onts("delete", R"("indices":["2"],"config_type":"candidate")");
    hostname("set", R"("config_type":"candidate","data":{"hostname":7})");
    hostname("set", R"("config_type":"running","data":{})");
    command("commit");
    auto lines = take_log();
    std::erase_if(lines, [](const auto& line) { return !line.starts_with("Session "); });
    EXPECT_THAT(lines, testing::ElementsAre(EndsWith(": set configuration.ZebGCfg.pon.ont [2 5-6]: done"),
                                            EndsWith(": delete configuration.ZebGCfg.pon.ont [2]: failed"),
                                            EndsWith(": set configuration.CommonGCfg.hostname: refused"),
                                            EndsWith(": set configuration.CommonGCfg.hostname: failed"),
                                            EndsWith(": command command.commit: done")));
}

} // namespace
} // namespace xpon::test
