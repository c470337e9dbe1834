// Reading, changing, committing: the way of a configuration through candidate and running.

#include "api_service/protocol/route_table.hpp"
#include "tests/service/service_fixture.hpp"

#include <fmt/format.h>
#include <gmock/gmock.h>

namespace xpon::test {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

class Configuration : public ServiceTest {
protected:
    std::string in_session(const std::string& members) {
        return ask(fmt::format(R"({{"session_id":"{}",{}}})", id, members));
    }
    std::string hostname(const std::string& method, const std::string& members) {
        return in_session(
            fmt::format(R"("path":"configuration.CommonGCfg.hostname","method":"{}",{})", method, members));
    }
    std::string onts(const std::string& method, const std::string& members) {
        return in_session(fmt::format(R"("path":"configuration.ZebGCfg.pon.ont","method":"{}",{})", method, members));
    }
    std::string command(const std::string& name) {
        return in_session(fmt::format(R"("path":"command.{}","method":"command")", name));
    }
    std::string request_error(const std::string& text, const std::string& path) const {
        return fmt::format(R"({{"success":false,"session_id":"{}","errors":[{{"message":{{"key":"{}","params":{{}}}},)"
                           R"("path":"{}"}}]}})",
                           id, text, path);
    }

    const std::string id = log_in("admin");
    const std::string done = fmt::format(R"({{"success":true,"session_id":"{}"}})", id);
};

TEST_F(Configuration, AChangeReachesRunningByCommitOnly) {
    const auto named = [&](const char* name) {
        return fmt::format(R"({{"success":true,"session_id":"{}","data":{{"hostname":"{}"}}}})", id, name);
    };
    EXPECT_EQ(hostname("get", R"("config_type":"running")"), named("olt"));
    EXPECT_EQ(hostname("set", R"("config_type":"candidate","data":{"hostname":"olt-7"})"), done);
    EXPECT_EQ(hostname("get", R"("config_type":"running")"), named("olt"));
    EXPECT_EQ(hostname("get", R"("config_type":"candidate")"), named("olt-7"));

    EXPECT_EQ(command("rollback"), done);
    EXPECT_EQ(hostname("get", R"("config_type":"candidate")"), named("olt"));
    EXPECT_EQ(command("commit"), done) << "nothing is pending";

    EXPECT_EQ(hostname("set", R"("config_type":"candidate","data":{"hostname":"olt-8"})"), done);
    EXPECT_EQ(command("commit"), done);
    EXPECT_EQ(hostname("get", R"("config_type":"running")"), named("olt-8"));
}

TEST_F(Configuration, OneRequestSetsReadsAndDeletesManyOnts) {
    EXPECT_EQ(onts("set", R"("indices":["1","1-8"],"config_type":"candidate","data":{"description":"Flat"})"), done);
    const auto read = onts("get", R"("indices":["1","1-9"],"config_type":"candidate")");
    std::size_t described = 0;
    for (auto at = read.find("\"Flat\""); at != std::string::npos; at = read.find("\"Flat\"", at + 1)) {
        ++described;
    }
    EXPECT_EQ(described, 8U);
    EXPECT_EQ(onts("delete", R"("indices":["1","3"],"config_type":"candidate")"), done);
    EXPECT_THAT(onts("get", R"("indices":["1","3"],"config_type":"candidate")"), HasSubstr(R"("description":"")"));
    EXPECT_THAT(onts("get", R"("indices":["1","4"],"config_type":"candidate")"), HasSubstr(R"("description":"Flat")"));
}

TEST_F(Configuration, RequestErrors) {
    const auto count = "Wrong number of indices";
    const auto type = "Configuration type is missing or wrong";
    EXPECT_EQ(hostname("get", R"("indices":["1"],"config_type":"running")"), request_error(count, "get"));
    EXPECT_EQ(hostname("get", R"("indices":[])"), request_error(type, "get"));
    EXPECT_EQ(hostname("set", R"("indices":["1"],"config_type":"running")"), request_error(count, "set"));
    EXPECT_EQ(hostname("set", R"("data":{})"), request_error(type, "set"));
    EXPECT_EQ(onts("get", R"("indices":["1","1","1"],"config_type":"running")"), request_error(count, "get"));
    EXPECT_EQ(onts("delete", R"("indices":["1","1","1"],"config_type":"candidate")"), request_error(count, "delete"));
    EXPECT_EQ(onts("delete", R"("indices":["1","1"],"config_type":"running")"), request_error(type, "delete"));
}

TEST_F(Configuration, FieldErrorsComeBeforeTheConfigurationType) {
    const auto wrong = hostname("set", R"("config_type":"running","data":{"hostname":""})");
    EXPECT_THAT(wrong, HasSubstr(R"("key":"Text is too short, {p0} bytes of at least {p1}","params":{"p0":0,"p1":1}},)"
                                 R"("path":"hostname")"));
    EXPECT_EQ(hostname("set", R"("config_type":"running","data":{"hostname":"x"})"),
              not_processed("configuration.CommonGCfg.hostname", id));
    EXPECT_THAT(hostname("set", R"("config_type":"candidate")"), HasSubstr(R"("path":"data")"));
    EXPECT_EQ(command("commit"), done);
    EXPECT_THAT(hostname("get", R"("config_type":"running")"), HasSubstr(R"("hostname":"olt")"));
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
            return in_session(
                fmt::format(R"("path":"{}","method":"{}",{}{})", row.path, method, indices_of(row.path), members));
        };
        const auto running = route("get", R"("config_type":"running")");
        EXPECT_EQ(route("get", R"("config_type":"candidate")"), running);
        auto record = running.substr(running.find(R"("data":)") + 7);
        record = record.front() == '[' ? record.substr(1, record.size() - 3) : record.substr(0, record.size() - 1);
        EXPECT_EQ(route("set", R"("config_type":"candidate","data":)" + record), done) << row.path;
        EXPECT_EQ(route("get", R"("config_type":"candidate")"), running);
        record.insert(1, R"("no such key":1,)");
        EXPECT_THAT(route("set", R"("config_type":"candidate","data":)" + record), HasSubstr("Unknown key {p0}"))
            << row.path;
    }
    EXPECT_EQ(elements, 17);
}

TEST_F(Configuration, EveryChangeLeavesOneLineWithoutItsData) {
    const auto notices = [this] {
        std::vector<std::string> texts;
        for (auto& text : take_log()) {
            if (text.starts_with("Session ")) {
                texts.push_back(text.substr(("Session " + id).size()));
            }
        }
        return texts;
    };
    notices();
    hostname("get", R"("config_type":"running")");
    onts("set", R"("indices":["2","5-6"],"config_type":"candidate","data":{"password":"sesame"})");
    onts("delete", R"("indices":["2"],"config_type":"candidate")");
    hostname("set", R"("config_type":"candidate","data":{"hostname":7})");
    hostname("set", R"("config_type":"running","data":{})");
    command("commit");
    EXPECT_THAT(notices(), testing::ElementsAre(": set configuration.ZebGCfg.pon.ont [2 5-6]: done",
                                                ": delete configuration.ZebGCfg.pon.ont [2]: refused",
                                                ": set configuration.CommonGCfg.hostname: refused",
                                                ": set configuration.CommonGCfg.hostname: failed",
                                                ": command command.commit: done"));
}

TEST_F(Configuration, SessionsShareOneCandidate) {
    const auto other = log_in("viewer");
    EXPECT_EQ(hostname("set", R"("config_type":"candidate","data":{"hostname":"shared"})"), done);
    EXPECT_THAT(ask(fmt::format(R"({{"session_id":"{}","path":"configuration.CommonGCfg.hostname","method":"get",)"
                                R"("config_type":"candidate"}})",
                                other)),
                HasSubstr("shared"));
}

} // namespace
} // namespace xpon::test
