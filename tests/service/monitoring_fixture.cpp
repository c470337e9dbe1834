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

std::string MonitoringTest::get(const std::string& path, const std::string& members) {
    return request(path, "get", members);
}

std::string MonitoringTest::answer(const std::string& data) const {
    return fmt::format(R"({{"success":true,"session_id":"{}","data":{}}})", id, data);
}

std::string MonitoringTest::failure(const std::string& path) const {
    return not_processed(path, id);
}

void MonitoringTest::configure() {
    const auto admin = log_in("admin");
    const auto send = [&](const std::string& members) {
        EXPECT_EQ(ask(fmt::format(R"({{"session_id":"{}",{}}})", admin, members)),
                  fmt::format(R"({{"success":true,"session_id":"{}"}})", admin));
    };
    const auto set_ont = [&](int port, int ont, int serial, const char* more) {
        send(fmt::format(R"("path":"configuration.ZebGCfg.pon.ont","method":"set","indices":["{}","{}"],)"
                         R"("config_type":"candidate","data":{{"serial":[83,73,77,85,0,0,0,{},0,0]{}}})",
                         port, ont, serial, more));
    };
    set_ont(1, 1, 1, R"(,"password":"open","description":"Flat 1")");
    set_ont(1, 2, 2, "");
    set_ont(2, 3, 3, "");
    send(R"("path":"configuration.ZebGCfg.switch_config.front_port","method":"set","indices":["4"],)"
         R"("config_type":"candidate","data":{"enabled":false})");
    send(R"("path":"command.commit","method":"command")");
}

} // namespace xpon::test
