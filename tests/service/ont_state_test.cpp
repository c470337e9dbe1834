// Configured, activated and unactivated ONTs brought together.

#include "tests/service/monitoring_fixture.hpp"
#include "xpon/cfgdb/element_functions.hpp"

#include <algorithm>

#include <fmt/format.h>
#include <gmock/gmock.h>

namespace xpon::test {
namespace {

using testing::Contains;
using testing::EndsWith;
using testing::HasSubstr;
using namespace std::string_literals;

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
    std::string states(const std::string& indices) {
        return get(state_route, R"("indices":)" + indices);
    }
    std::string find(const std::string& serial, const std::string& members = R"(,"config_type":"running")") {
        return request(find_route, "call", R"("data":{"serial":)" + serial + "}" + members);
    }
    static std::string wire_serial(int last) {
        return fmt::format("[83,73,77,85,0,0,0,{},0,0]", last);
    }
    std::string found(const std::string& monitoring, const std::string& configuration = "") const {
        return answer(R"({"monitoring":)" + monitoring +
                      (configuration.empty() ? "" : R"(,"configuration":)" + configuration) + "}");
    }
    /// What the configuration route says of an ONT.
    std::string configuration(const std::string& place, const std::string& type) {
        const auto whole =
            get("configuration.ZebGCfg.pon.ont", fmt::format(R"("indices":{},"config_type":"{}")", place, type));
        const auto begin = whole.find('[') + 1;
        return whole.substr(begin, whole.rfind(']') - begin);
    }
};

TEST_F(OntState, ConfiguredOntsComeFirstThenTheUnactivatedOnesThatNoneOfThemIs) {
    const auto all = answer(fmt::format("[{},{},{},{}]", activated_1, unactivated_2, unseen_3, unclaimed_9));
    EXPECT_EQ(states("[]"), all);
    EXPECT_EQ(get(state_route), all);
    EXPECT_EQ(states(R"(["1-2","1-256"])"), all);
    device.activated.clear();
    EXPECT_EQ(states(R"(["2-16","3,9"])"), answer(fmt::format("[{},{},{}]", unseen_3, unclaimed_2, unclaimed_9)));
    device.unactivated.clear();
    EXPECT_EQ(states(R"(["16","1"])"), answer("[]"));
}

TEST_F(OntState, OneSerialSeenOnTwoPortsIsClaimedOnce) {
    device.unactivated.push_back(device.unactivated[0]);
    device.unactivated.back().port = 7;
    EXPECT_THAT(states("[]"), testing::AllOf(HasSubstr(unactivated_2),
                                             HasSubstr(R"("password":"sesame","port":7,"state":"UNACTIVATED")")));
}

TEST_F(OntState, WrongIndices) {
    for (const auto& [indices, cause] : {std::pair{R"(["1"])", "Indices cannot contain a single element"},
                                         {R"(["1","1","1"])", "Indices must contain no more than two elements"},
                                         {R"(["17","1"])", "C API function returned -1, errno=34"},
                                         {R"(["1","257"])", "C API function returned -1, errno=34"},
                                         {R"(["1","a"])", "C API function returned -1, errno=22"}}) {
        EXPECT_EQ(states(indices), failure(state_route));
        EXPECT_THAT(take_log(), Contains(EndsWith("Message: "s + cause + "."))) << indices;
    }
}

TEST_F(OntState, StatesThatDoNotGoWithTheConfigurationAreRefused) {
    const auto refused = [&] {
        EXPECT_EQ(states("[]"), failure(state_route));
        EXPECT_THAT(take_log(), Contains(HasSubstr("The number of received states is greater than requested")));
        EXPECT_EQ(find(wire_serial(7)), failure(find_route));
        take_log();
    };
    const auto known = device.activated[0];
    auto other = known;
    std::ranges::copy(serial_of(3), other.serial);
    device.activated = {other, known}; // not in the order of the configuration
    refused();
    std::ranges::copy(serial_of(7), other.serial);
    device.activated = {known, other}; // one too many
    refused();
    device.activated.assign(5000, known);
    refused();
}

TEST_F(OntState, FindsAnOntWhereverItIs) {
    const auto one = configuration(R"(["1","1"])", "running");
    EXPECT_THAT(one, HasSubstr(R"("description":"Flat 1")"));
    EXPECT_EQ(find(wire_serial(1)), found(R"({"cfg_port":1,"cfg_ont_id":1,"serial":[83,73,77,85,0,0,0,1,0,0],)"
                                          R"("state":"OPERATIONAL","port":1})",
                                          one));
    EXPECT_EQ(find(wire_serial(2)), found(R"({"cfg_port":1,"cfg_ont_id":2,"serial":[83,73,77,85,0,0,0,2,0,0],)"
                                          R"("port":1,"state":"UNACTIVATED"})",
                                          configuration(R"(["1","2"])", "running")));
    EXPECT_EQ(find(wire_serial(3)), found(R"({"cfg_port":2,"cfg_ont_id":3,"serial":[83,73,77,85,0,0,0,3,0,0]})",
                                          configuration(R"(["2","3"])", "running")));
    EXPECT_EQ(find(wire_serial(9)), found(R"({"serial":[83,73,77,85,0,0,0,9,0,0],"port":3,"state":"UNACTIVATED"})"));
    EXPECT_EQ(find(wire_serial(8)), found("{}"));
    EXPECT_EQ(find("[83,73,77,85,0,0,0,1,0,1]"), found("{}"));
}

TEST_F(OntState, FindShowsTheConfigurationAskedFor) {
    const auto admin = log_in("admin");
    ask(fmt::format(R"({{"session_id":"{}","path":"configuration.ZebGCfg.pon.ont","method":"set","indices":["1","1"],)"
                    R"("config_type":"candidate","data":{{"description":"Flat 2"}}}})",
                    admin));
    EXPECT_THAT(find(wire_serial(1)), HasSubstr(configuration(R"(["1","1"])", "running")));
    EXPECT_THAT(find(wire_serial(1), R"(,"config_type":"candidate")"),
                HasSubstr(R"("configuration":)" + configuration(R"(["1","1"])", "candidate")));
    EXPECT_EQ(find(wire_serial(1), ""), failure(find_route));
    EXPECT_THAT(take_log(), Contains(HasSubstr("Invalid configuration type")));
}

TEST_F(OntState, FindRefusesWhatIsNoSerial) {
    const auto invalid = fmt::format(R"({{"success":false,"session_id":"{}","errors":[{{"message":{{"key":)", id);
    for (const auto& [serial, cause] :
         {std::pair{"[]", "Binary serial number must contain 10 bytes, it contains 0"},
          {"[1,2,3,4,5,6,7,8,9]", "Binary serial number must contain 10 bytes, it contains 9"},
          {"[1,2,3,4,5,6,7,8,9,10,11]", "Binary serial number must contain 10 bytes, it contains 11"},
          {R"([1,"12",3,4,5,6,7,8,9,10])", "item 1 in json array is not number"},
          {"[256,2,3,4,5,6,7,8,9,10]", "item 0 in json array is 256, value must be in range from 0 to 255"},
          {"[1,2,3,4,5,6,7,8,9,-1]", "item 9 in json array is -1, value must be in range from 0 to 255"},
          {"[1,2,0.5,4,5,6,7,8,9,1]", "item 2 in json array is 0.5, value must be in range from 0 to 255"}}) {
        const auto answered = find(serial);
        EXPECT_THAT(answered, testing::AllOf(testing::StartsWith(invalid),
                                             EndsWith(R"("params":{"p0":"InvalidSerial"}},"path":"serial"}]})")));
        EXPECT_THAT(take_log(), testing::IsSupersetOf({testing::Matcher<std::string>(HasSubstr(cause)),
                                                       testing::Matcher<std::string>(
                                                           "get_serial_from_array() failed, unable to parse serial "
                                                           "number")}));
    }
    for (const auto& [data, cause] : {std::pair{R"({"serial":"SIMU"})", "Object must be a array of bytes"},
                                      {"{}", "Object cannot be null"},
                                      {"7", "Object cannot be null"}}) {
        EXPECT_EQ(request(find_route, "call", R"("data":)"s + data), failure(find_route));
        EXPECT_THAT(take_log(), Contains(HasSubstr(cause)));
    }
    EXPECT_EQ(request(find_route, "call"), failure(find_route));
}

/// 4096 configured ONTs, every other one activated, the rest unactivated, and 4096 more that nobody configured.
TEST_F(OntState, AFullOltWithAsManyStrangers) {
    cfgdb::CfgDbWrapper db("test");
    const auto known = device.activated[0];
    device.activated.clear();
    device.unactivated.clear();
    for (unsigned short i = 0; i < max_configured_onts; ++i) {
        const std::uint64_t serial = (std::uint64_t{'S'} << 56) + i + 1;
        cfgdb::PonOnt ont{};
        ont.serial = serial;
        ASSERT_EQ(setDb_ZebGCfg_pon_ont(db.handle(), db.context(), &ont, &i), 0);
        if (i % 2 == 0) {
            device.activated.push_back(known);
            unsigned_long_serial_to_bin(serial, device.activated.back().serial);
        } else {
            device.unactivated.push_back({1, {}, "p"});
            unsigned_long_serial_to_bin(serial, device.unactivated.back().serial);
        }
        device.unactivated.push_back({2, {}, "p"});
        unsigned_long_serial_to_bin(~serial, device.unactivated.back().serial);
    }
    ASSERT_TRUE(db.commit(nullptr));
    const auto whole = states("[]");
    const auto count = [&](const std::string& text) {
        std::size_t found = 0;
        for (auto at = whole.find(text); at != std::string::npos; at = whole.find(text, at + 1)) {
            ++found;
        }
        return found;
    };
    EXPECT_EQ(count(R"("cfg_port":)"), 4096U);
    EXPECT_EQ(count(R"("state":"OPERATIONAL")"), 2048U);
    EXPECT_EQ(count(R"("description":"","port":1,"state":"UNACTIVATED")"), 2048U);
    EXPECT_EQ(count(R"("password":"p","port":2,"state":"UNACTIVATED")"), 4096U);
    EXPECT_THAT(find("[83,0,0,0,0,0,16,0,0,0]"), HasSubstr(R"("cfg_port":16,"cfg_ont_id":256,)"));
}

} // namespace
} // namespace xpon::test
