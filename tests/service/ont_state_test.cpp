// Configured, activated and unactivated ONTs brought together.

#include "tests/service/monitoring_fixture.hpp"
#include "xpon/cfgdb/element_functions.hpp"

#include <fmt/format.h>
#include <gmock/gmock.h>

namespace xpon::test {
namespace {

using testing::Contains;
using testing::EndsWith;
using testing::HasSubstr;

constexpr const char* state_route = "monitoring.interface.ont.state";
constexpr const char* find_route = "utils.ont.find";

constexpr const char* activated_1 =
    R"({"cfg_port":1,"cfg_ont_id":1,"serial":[83,73,77,85,0,0,0,1,0,0],"password":"open","description":"Flat 1",)"
    R"("state":"OPERATIONAL","port":1,"ont_info":{"equipment_id":"SIM-ONT-4R","hardware_version":"1v2",)"
    R"("software_version":"2.0.7","equalization_delay":143757,"fec_state":1,"distance":9731,"rssi":-19.4},)"
    R"("alloc_ids":[16,384,385]})";
constexpr const char* unactivated_2 =
    R"({"cfg_port":1,"cfg_ont_id":2,"serial":[83,73,77,85,0,0,0,2,0,0],"password":"","description":"",)"
    R"("port":1,"state":"UNACTIVATED"})";
constexpr const char* unseen_3 =
    R"({"cfg_port":2,"cfg_ont_id":3,"serial":[83,73,77,85,0,0,0,3,0,0],"password":"","description":""})";
constexpr const char* unclaimed_2 =
    R"({"serial":[83,73,77,85,0,0,0,2,0,0],"password":"sesame","port":1,"state":"UNACTIVATED"})";
constexpr const char* unclaimed_9 =
    R"({"serial":[83,73,77,85,0,0,0,9,0,0],"password":"x","port":3,"state":"UNACTIVATED"})";

class OntState : public MonitoringTest {
protected:
    std::string find(const std::string& serial, const std::string& type = "running") {
        return request(find_route, "call", fmt::format(R"("config_type":"{}","data":{{"serial":{}}})", type, serial));
    }
    std::string find(int last_of_serial, const std::string& type = "running") {
        return find(fmt::format("[83,73,77,85,0,0,0,{},0,0]", last_of_serial), type);
    }
    std::string found(const std::string& monitoring, const std::string& configuration = "") const {
        return answer(R"({"monitoring":)" + monitoring +
                      (configuration.empty() ? "" : R"(,"configuration":)" + configuration) + "}");
    }
    /// What the configuration route says of an ONT.
    std::string configuration(const std::string& place, const std::string& type = "running") {
        const auto whole = request("configuration.ZebGCfg.pon.ont", "get",
                                   fmt::format(R"("indices":{},"config_type":"{}")", place, type));
        const auto begin = whole.find('[') + 1;
        return whole.substr(begin, whole.rfind(']') - begin);
    }
};

TEST_F(OntState, ConfiguredOntsComeFirstThenTheUnactivatedOnesThatNoneOfThemIs) {
    const auto all = answer(fmt::format("[{},{},{},{}]", activated_1, unactivated_2, unseen_3, unclaimed_9));
    EXPECT_EQ(get(state_route), all);
    EXPECT_EQ(get(state_route, R"(["1-2","1-256"])"), all);
    device.activated.clear();
    EXPECT_EQ(get(state_route, R"(["2-16","3,9"])"),
              answer(fmt::format("[{},{},{}]", unseen_3, unclaimed_2, unclaimed_9)));
    device.unactivated[1] = device.unactivated[0]; // one serial number seen on two ports is claimed once
    device.unactivated[1].port = 7;
    EXPECT_THAT(get(state_route), testing::AllOf(HasSubstr(unactivated_2),
                                                 HasSubstr(R"("password":"sesame","port":7,"state":"UNACTIVATED")")));
    device.unactivated.clear();
    EXPECT_EQ(get(state_route, R"(["16","1"])"), answer("[]"));
}

TEST_F(OntState, FindsAnOntWhereverItIs) {
    EXPECT_EQ(find(1), found(R"({"cfg_port":1,"cfg_ont_id":1,"serial":[83,73,77,85,0,0,0,1,0,0],)"
                             R"("state":"OPERATIONAL","port":1})",
                             configuration(R"(["1","1"])")));
    EXPECT_EQ(find(2), found(R"({"cfg_port":1,"cfg_ont_id":2,"serial":[83,73,77,85,0,0,0,2,0,0],)"
                             R"("port":1,"state":"UNACTIVATED"})",
                             configuration(R"(["1","2"])")));
    EXPECT_EQ(find(3), found(R"({"cfg_port":2,"cfg_ont_id":3,"serial":[83,73,77,85,0,0,0,3,0,0]})",
                             configuration(R"(["2","3"])")));
    EXPECT_EQ(find(9), found(R"({"serial":[83,73,77,85,0,0,0,9,0,0],"port":3,"state":"UNACTIVATED"})"));
    EXPECT_EQ(find("[83,73,77,85,0,0,0,1,0,1]"), found("{}"));

    request("configuration.ZebGCfg.pon.ont", "set",
            R"("indices":["1","1"],"config_type":"candidate","data":{"description":"Flat 2"})");
    EXPECT_THAT(find(1), HasSubstr(R"("description":"Flat 1")"));
    EXPECT_THAT(find(1, "candidate"), HasSubstr(R"("configuration":)" + configuration(R"(["1","1"])", "candidate")));
}

TEST_F(OntState, FindRefusesWhatIsNoSerial) {
    for (const auto& [serial, cause] :
         {std::pair{"[]", "Binary serial number must contain 10 bytes, it contains 0"},
          {"[1,2,3,4,5,6,7,8,9,10,11]", "Binary serial number must contain 10 bytes, it contains 11"},
          {R"([1,"12",3,4,5,6,7,8,9,10])", "item 1 in json array is not number"},
          {"[256,2,3,4,5,6,7,8,9,10]", "item 0 in json array is 256, value must be in range from 0 to 255"},
          {"[1,2,3,4,5,6,7,8,9,-1]", "item 9 in json array is -1, value must be in range from 0 to 255"},
          {"[1,2,0.5,4,5,6,7,8,9,1]", "item 2 in json array is 0.5, value must be in range from 0 to 255"}}) {
        EXPECT_THAT(find(serial), EndsWith(R"("params":{"p0":"InvalidSerial"}},"path":"serial"}]})"));
        const auto log = take_log();
        EXPECT_THAT(log, Contains(HasSubstr(cause)));
        EXPECT_THAT(log, Contains("get_serial_from_array() failed, unable to parse serial number"));
    }
    for (const auto& [members, cause] :
         {std::pair{R"("data":{"serial":"SIMU"})", "Object must be a array of bytes"},
          {R"("data":7)", "Object cannot be null"},
          {"", "Object cannot be null"},
          {R"("data":{"serial":[83,73,77,85,0,0,0,1,0,0]})", "Invalid configuration type"}}) {
        EXPECT_EQ(request(find_route, "call", members), failure(find_route));
        EXPECT_THAT(take_log(), Contains(HasSubstr(cause)));
    }
}

} // namespace
} // namespace xpon::test
