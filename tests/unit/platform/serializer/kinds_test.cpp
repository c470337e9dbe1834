#include "tests/unit/platform/serializer/json_records.hpp"
#include "xpon/error_texts/json_errors.hpp"
#include "xpon/serializer/serializer.hpp"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <utility>

namespace xpon::cfgdb {
namespace {

/// -1 for a text that is no error's.
int index_of(std::string_view text) {
    const char* known = nullptr;
    for (std::uint16_t index = 0; index < 100; ++index) {
        if (get_json_errors_from_index(Json_errors{index}, &known) == 0 && text == known) {
            return index;
        }
    }
    return -1;
}

/// What became of the data: the value of the first key that it holds, or the errors as "INDEX PATH PARAMETERS".
std::string outcome(const serializer::Table& table, const std::string& json) {
    const serializer::Tree data(cJSON_Parse(json.c_str()));
    EXPECT_TRUE(data) << json;
    test::Record record;
    const auto errors = test::read(table, data.get(), record);
    if (!errors) {
        const auto target = test::written(table, record);
        return test::printed(cJSON_GetObjectItemCaseSensitive(target.get(), data->child->string));
    }
    std::string text;
    for (const auto* error = errors->child; error != nullptr; error = error->next) {
        const auto* message = cJSON_GetObjectItem(error, "message");
        text += (text.empty() ? "" : "; ") +
                std::to_string(index_of(cJSON_GetObjectItem(message, "key")->valuestring)) + " " +
                cJSON_GetObjectItem(error, "path")->valuestring + " " +
                test::printed(cJSON_GetObjectItem(message, "params"));
    }
    return text;
}

const auto& port = test::table_of<FrontPort>();
const auto& ntp = test::table_of<NtpConfig>();
const auto& dba = test::table_of<ProfileOntDba>();
const auto& ont = test::table_of<PonOnt>();
const auto& service = test::table_of<OntServices>();
const auto& ports_profile = test::table_of<ProfileOntPortsCfg>();
const auto& acs = test::table_of<ProfileOntManagementCfg>();
const auto& cross_connect = test::table_of<ProfileOntCrossConnect>();
const auto& hostname = test::table_of<GSystemHostname>();
const auto& snmp = test::table_of<GSysSnmpCfg>();

struct Case {
    const serializer::Table& table;
    std::string json;
    std::string expected;
};

const Case cases[] = {
    {port, R"({"enabled":1})", R"(21 enabled {"p0":"boolean"})"},
    {port, R"({"pvid":4.0e1})", "40"},
    {port, R"({"pvid":64.5})", R"(21 pvid {"p0":"integer"})"},
    {port, R"({"pvid":1e400})", R"(21 pvid {"p0":"integer"})"},
    {port, R"({"pvid":"64"})", R"(21 pvid {"p0":"number"})"},
    {port, R"({"pvid":65537})", R"(22 pvid {"p0":65537,"p1":0,"p2":4094})"},
    {ntp, R"({"utc_offset_min":-720})", "-720"},
    {ntp, R"({"utc_offset_min":-7})", R"(23 utc_offset_min {"p0":-7,"p1":15})"},
    {dba, R"({"additional":"None"})", R"(27 additional {"p0":"None","p1":"none, non_assured, best_effort"})"},
    {port, R"({"description":"h\u00e9 \ud83d\ude00"})", "\"h\u00e9 \U0001F600\""},
    {port, R"({"description":"a\tb"})", R"(26 description {"p0":1,"p1":"text"})"},
    {port, "{\"description\":\"ab\xC3\"}", R"(26 description {"p0":2,"p1":"text"})"},
    {port, "{\"description\":\"\xC0\xAF\"}", R"(26 description {"p0":0,"p1":"text"})"},
    {ont, R"({"password":"a\u00e9"})", R"(26 password {"p0":1,"p1":"ascii"})"},
    {dba, R"({"name":"+x_ #"})", R"("+x_ #")"},
    {dba, R"({"name":"+49 *0"})", R"(26 name {"p0":4,"p1":"name"})"},
    {dba, R"({"name":"_x"})", R"(26 name {"p0":0,"p1":"name"})"},
    {ports_profile, R"({"sip_proxy":"ntp-1.example.net"})", R"("ntp-1.example.net")"},
    {ports_profile, R"({"sip_proxy":"192.0.2.256"})", R"(26 sip_proxy {"p0":8,"p1":"host"})"},
    {ports_profile, R"({"sip_proxy":"a..b"})", R"(26 sip_proxy {"p0":2,"p1":"host"})"},
    {ports_profile, R"({"sip_proxy":"a-.b"})", R"(26 sip_proxy {"p0":1,"p1":"host"})"},
    {hostname, R"({"hostname":"a.b"})", R"(26 hostname {"p0":1,"p1":"label"})"},
    {snmp, R"({"engine_id":"0aF"})", R"(25 engine_id {"p0":3,"p1":10})"},
    {snmp, R"({"engine_id":"0aF00000000"})", R"(26 engine_id {"p0":11,"p1":"hex"})"},
    {snmp, R"({"engine_id":"0aFg000000"})", R"(26 engine_id {"p0":3,"p1":"hex"})"},
    {acs, R"({"acs_secret":"$ob1$XKLo5fQGMc5pbQ"})", R"("$ob1$XKLo5fQGMc5pbQ")"},
    {acs, R"({"acs_secret":"secret"})", R"(34 acs_secret {})"},
    {snmp, R"({"users":[{"name":"a","auth_secret":"$ob1$6Le-Q00"}]})", R"(25 users.0.auth_secret {"p0":1,"p1":8})"},
    {service, R"({"static_ip":"255.0.0.1"})", R"("255.0.0.1")"},
    {service, R"({"static_ip":"1.2.3.04"})", R"(28 static_ip {"p0":"1.2.3.04"})"},
    {ports_profile, R"({"multicast_ranges":[{"first":"224.0.0.255"}]})",
     R"(22 multicast_ranges.0.first {"p0":"224.0.0.255","p1":"224.0.1.0","p2":"239.255.255.255"})"},
    {ont, R"({"serial":[83]})", R"(33 serial {"p0":10,"p1":1})"},
    {ont, R"({"serial":[83,73,256,85,160,3,0,17,0,1]})",
     R"(22 serial.2 {"p0":256,"p1":0,"p2":255}; 22 serial.9 {"p0":1,"p1":0,"p2":0})"},
    {cross_connect, R"({"uni_ports":[4,1]})", "[1,4]"},
    {cross_connect, R"({"uni_ports":[5]})", R"(22 uni_ports.0 {"p0":5,"p1":1,"p2":4})"},
    {cross_connect, R"({"uni_ports":[2,2]})", R"(36 uni_ports.1 {"p0":2})"},
    {port, R"({"tagged_vlans":"4094,2,1,9-10,10"})", R"("1-2,9-10,4094")"},
    {port, R"({"tagged_vlans":"4095"})", R"(30 tagged_vlans {"p0":"4095"})"},
    {port, R"({"tagged_vlans":"3-2"})", R"(30 tagged_vlans {"p0":"3-2"})"},
    {ports_profile, R"({"pots":[1]})", R"(21 pots.0 {"p0":"boolean"})"},
    {ntp, R"({"servers":[{"address":"a"},7]})", R"(21 servers.1 {"p0":"object"})"},
    {ntp, R"({"servers":[{"address":"a"},{"address":"b","version":3}]})",
     R"([{"address":"a","version":4,"prefer":false},{"address":"b","version":3,"prefer":false}])"},
    {ont, R"({"lines":[{"number":"1"}]})",
     R"([{"enabled":false,"number":"1","user":"","secret":""},{"enabled":false,"number":"","user":"","secret":""}])"},
    {ntp, "[1]", R"(21 data {"p0":"object"})"},
    // Order: the table's, then unknown keys in the order of the data. Keys are compared with their case.
    {ntp, R"({"Enabled":true,"max_poll":"1","enabled":0,"":2})",
     R"(21 enabled {"p0":"boolean"}; 21 max_poll {"p0":"number"}; 20 Enabled {"p0":"Enabled"}; 20  {"p0":""})"},
    {ntp, R"({"enabled":true})", R"(32 servers {"p0":"enabled needs a server"})"},
    {ntp, R"({"min_poll":5,"enabled":false,"min_poll":5})", R"(35 min_poll {"p0":"min_poll"})"},
    {ntp, R"({"x":1,"x":2})", R"(20 x {"p0":"x"})"},
    {ntp, "{\"\xFF\":1}", "20 \uFFFD {\"p0\":\"\uFFFD\"}"},
};

TEST(Kinds, AcceptOrNameTheFault) {
    for (const auto& [table, json, expected] : cases) {
        EXPECT_EQ(outcome(table, json), expected) << json;
    }
}

TEST(FieldErrors, AreThirtyTwoAtMost) {
    std::string json = R"({"min_poll":0)";
    for (int i = 0; i < 100; ++i) {
        json += ",\"k" + std::to_string(i) + "\":1";
    }
    EXPECT_TRUE(outcome(ntp, json + "}").ends_with(R"(; 20 k30 {"p0":"k30"})"));
}

TEST(FieldErrors, RepeatNoMoreThanTheBeginningOfALongText) {
    const std::string cut = std::string(255, 'k') + "...";
    const std::string text = std::string(255, 'k') + "\u00FC" + std::string(1'000'000, 'k');
    EXPECT_EQ(outcome(ntp, "{\"" + text + "\":1}"), "20 " + cut + " {\"p0\":\"" + cut + "\"}");
}

TEST(HostileData, CostsTimeInProportionToItsSize) {
    const auto repeated = [](std::string json, const std::string& more, const std::string& end) {
        while (json.size() < 2'000'000) {
            json += more;
        }
        return json + end;
    };
    const auto start = std::chrono::steady_clock::now();
    EXPECT_TRUE(
        outcome(cross_connect, repeated(R"({"uni_ports":[1)", ",1", "]}")).ends_with(R"(36 uni_ports.32 {"p0":1})"));
    EXPECT_EQ(outcome(port, repeated(R"({"tagged_vlans":"1-4094)", ",1-4094", "\"}")), "\"1-4094\"");
    EXPECT_TRUE(outcome(ntp, repeated(R"({"enabled":true)", R"(,"enabled":true,"x":[[[[{}]]]])", "}"))
                    .starts_with(R"(35 enabled {"p0":"enabled"}; 20 x)"));
    EXPECT_TRUE(outcome(ntp, repeated(R"({"servers":[{})", ",{}", "]}")).starts_with("31 servers"));
    // Milliseconds as it should be; a walk per element would take minutes.
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
}

TEST(DamagedRecord, IsReportedAndNotRead) {
    ProfileOntPortsCfg record{};
    record.multicast_ranges_count = 200;
    record.igmp_version = static_cast<ProfileOntPortsCfg::IgmpVersion>(9);
    std::ranges::fill(record.name, 'x');
    const serializer::Tree target(cJSON_CreateObject());
    cJSON* errors = nullptr;
    ASSERT_EQ(serializer::serialize_record(ports_profile, &record, target.get(), &errors), 0);
    const serializer::Tree owner(errors);
    EXPECT_EQ(cJSON_GetArraySize(errors), 3);
}

TEST(Serializers, RefuseNullPointers) {
    NtpConfig config{};
    cJSON* errors = nullptr;
    EXPECT_NE(deserialize_NtpConfig_from_json(nullptr, nullptr, &errors), 0);
    EXPECT_EQ(std::exchange(errno, 0), EINVAL);
    EXPECT_NE(serialize_NtpConfig_to_json(&config, nullptr, &errors), 0);
    EXPECT_EQ(std::exchange(errno, 0), EINVAL);
    EXPECT_EQ(deserialize_NtpConfig_from_json(nullptr, &config, &errors), 0);
    const serializer::Tree owner(errors);
    EXPECT_EQ(cJSON_GetArraySize(errors), 1) << "no data is data of a wrong type";
}

} // namespace
} // namespace xpon::cfgdb
