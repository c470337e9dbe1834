#include "tests/service/monitoring_fixture.hpp"

#include <fmt/format.h>

namespace xpon::test {

MonitoringTest::MonitoringTest() {
    device = filled_device();
    configure();
}

MonitoringTest::~MonitoringTest() {
    device = {};
}

std::string MonitoringTest::request(const std::string& path, const std::string& method, const std::string& members) {
    return ask(fmt::format(R"({{"session_id":"{}","path":"{}","method":"{}"{}{}}})", id, path, method,
                           members.empty() ? "" : ",", members));
}

std::string MonitoringTest::get(const std::string& path, const std::string& indices) {
    return request(path, "get", R"("indices":)" + indices);
}

std::string MonitoringTest::answer(const std::string& data) const {
    return fmt::format(R"({{"success":true,"session_id":"{}"{}{}}})", id, data.empty() ? "" : R"(,"data":)", data);
}

std::string MonitoringTest::failure(const std::string& path) const {
    return not_processed(path, id);
}

void MonitoringTest::configure() {
    const auto set = [&](const char* path, const std::string& members) {
        EXPECT_EQ(request(path, "set", R"("config_type":"candidate",)" + members), answer());
    };
    const auto set_ont = [&](int port, int ont, int serial, const char* more) {
        set("configuration.ZebGCfg.pon.ont",
            fmt::format(R"("indices":["{}","{}"],"data":{{"serial":[83,73,77,85,0,0,0,{},0,0]{}}})", port, ont, serial,
                        more));
    };
    set_ont(1, 1, 1, R"(,"password":"open","description":"Flat 1")");
    set_ont(1, 2, 2, "");
    set_ont(2, 3, 3, "");
    set("configuration.ZebGCfg.switch_config.front_port", R"("indices":["4"],"data":{"enabled":false})");
    EXPECT_EQ(request("command.commit", "command"), answer());
}

} // namespace xpon::test
