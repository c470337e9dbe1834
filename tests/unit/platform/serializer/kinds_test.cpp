#include "serializer/field_builders.hpp"
#include "serializer/record_json.hpp"

#include <chrono>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace xpon::serializer {
namespace {

/// One member of every kind, with the limits that the cases below probe.
struct Sample {
    enum Colour : std::uint8_t { red, green };
    struct Child {
        std::uint8_t value;
        std::int8_t temperature;
    };

    std::uint8_t flag;
    std::uint32_t big;
    std::int16_t offset;
    Colour colour;
    char text[9];
    char ascii[9];
    char name[9];
    char host[64];
    char label[9];
    char hex[9];
    char secret[56];
    std::uint32_t address;
    std::uint32_t group;
    std::uint8_t mac[6];
    std::uint64_t serial;
    std::uint32_t ports;
    std::uint8_t vlans[512];
    Child child;
    Child pair[2];
    std::uint8_t list_count;
    Child list[3];
    std::uint8_t flags[2];
};

constexpr const char* colour_names[] = {"red", "green"};
constexpr Field child_fields[] = {
    number(XPON_MEMBER(Sample::Child, value), 1, 9, 5),
    number(XPON_MEMBER(Sample::Child, temperature), -40, 85, 20),
};
constexpr Table child_table = make_table<Sample::Child>("Child", child_fields);
constexpr Field flag_element = boolean(element_member<std::uint8_t>, true);
constexpr Field sample_fields[] = {
    boolean(XPON_MEMBER(Sample, flag), true),
    number(XPON_MEMBER(Sample, big), 64, 4294967295, 64),
    number(XPON_MEMBER(Sample, offset), -720, 840, 0, 15),
    enumeration(XPON_MEMBER(Sample, colour), colour_names, Sample::red),
    text(XPON_MEMBER(Sample, text), Characters::text),
    text(XPON_MEMBER(Sample, ascii), Characters::ascii),
    text(XPON_MEMBER(Sample, name), Characters::name),
    text(XPON_MEMBER(Sample, host), Characters::host),
    text(XPON_MEMBER(Sample, label), Characters::label, 1, "olt"),
    optional_text(XPON_MEMBER(Sample, hex), Characters::hex, 4),
    secret(XPON_MEMBER(Sample, secret), 3),
    ipv4(XPON_MEMBER(Sample, address)),
    ipv4(XPON_MEMBER(Sample, group), address(239, 0, 0, 0), address(224, 0, 1, 0), address(239, 255, 255, 255)),
    mac(XPON_MEMBER(Sample, mac)),
    serial(XPON_MEMBER(Sample, serial)),
    port_set(XPON_MEMBER(Sample, ports), 4, 1),
    vlan_set(XPON_MEMBER(Sample, vlans), "7"),
    object(XPON_MEMBER(Sample, child), child_table),
    array(XPON_MEMBER(Sample, pair), child_table),
    list(XPON_MEMBER(Sample, list), XPON_MEMBER(Sample, list_count), child_table),
    array(XPON_MEMBER(Sample, flags), flag_element),
};
constexpr Table sample_table = make_table<Sample>("Sample", sample_fields);

std::string printed(const cJSON* tree) {
    char* text = cJSON_PrintUnformatted(tree);
    std::string result = text;
    cJSON_free(text);
    return result;
}

/// What became of the data: the value of the one key that it holds, or the errors as "INDEX PATH PARAMETERS".
std::string outcome(const std::string& json) {
    const Tree data(cJSON_Parse(json.c_str()));
    EXPECT_TRUE(data) << json;
    Sample record{};
    cJSON* errors = nullptr;
    EXPECT_EQ(deserialize_record(sample_table, data.get(), &record, &errors), 0);
    const Tree owner(errors);
    if (errors == nullptr) {
        const Tree target(cJSON_CreateObject());
        EXPECT_EQ(serialize_record(sample_table, &record, target.get(), &errors), 0);
        const auto* key = data->child == nullptr ? "" : data->child->string;
        return printed(cJSON_GetObjectItemCaseSensitive(target.get(), key));
    }
    std::string text;
    for (const auto* error = errors->child; error != nullptr; error = error->next) {
        const auto* message = cJSON_GetObjectItem(error, "message");
        auto index = Json_errors::no_error;
        EXPECT_EQ(get_json_errors_index_from_text(cJSON_GetObjectItem(message, "key")->valuestring, &index), 0);
        text += (text.empty() ? "" : "; ") + std::to_string(static_cast<int>(index)) + " " +
                cJSON_GetObjectItem(error, "path")->valuestring + " " + printed(cJSON_GetObjectItem(message, "params"));
    }
    return text;
}

struct Case {
    std::string json;
    std::string expected;
};

class Kinds : public testing::TestWithParam<Case> {};

TEST_P(Kinds, AcceptOrNameTheFault) {
    EXPECT_EQ(outcome(GetParam().json), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Numbers, Kinds,
    testing::Values(
        Case{R"({"flag":false})", "false"}, Case{R"({"flag":1})", R"(21 flag {"p0":"boolean"})"},
        Case{R"({"big":4294967295})", "4294967295"},
        Case{R"({"big":4294967296})", R"(22 big {"p0":4294967296,"p1":64,"p2":4294967295})"},
        Case{R"({"big":63})", R"(22 big {"p0":63,"p1":64,"p2":4294967295})"},
        Case{R"({"big":1e400})", R"(21 big {"p0":"integer"})"}, Case{R"({"big":64.5})", R"(21 big {"p0":"integer"})"},
        Case{R"({"big":"64"})", R"(21 big {"p0":"number"})"}, Case{R"({"big":null})", R"(21 big {"p0":"number"})"},
        Case{R"({"big":6.4e1})", "64"}, Case{R"({"offset":-720})", "-720"},
        Case{R"({"offset":-721})", R"(22 offset {"p0":-721,"p1":-720,"p2":840})"},
        Case{R"({"offset":-7})", R"(23 offset {"p0":-7,"p1":15})"}, Case{R"({"colour":"green"})", R"("green")"},
        Case{R"({"colour":"Green"})", R"(27 colour {"p0":"Green","p1":"red, green"})"},
        Case{R"({"colour":1})", R"(21 colour {"p0":"string"})"}));

INSTANTIATE_TEST_SUITE_P(Texts, Kinds,
                         testing::Values(Case{R"({"text":"12345678"})", R"("12345678")"},
                                         Case{R"({"text":"123456789"})", R"(24 text {"p0":9,"p1":8})"},
                                         Case{R"({"text":"h\u00e9 \ud83d\ude00"})", "\"h\u00e9 \U0001F600\""},
                                         Case{R"({"text":"a\tb"})", R"(26 text {"p0":1,"p1":"text"})"},
                                         Case{"{\"text\":\"ab\xC3\"}", R"(26 text {"p0":2,"p1":"text"})"},
                                         Case{"{\"text\":\"\xC0\xAF\"}", R"(26 text {"p0":0,"p1":"text"})"},
                                         Case{R"({"ascii":"a\u00e9"})", R"(26 ascii {"p0":1,"p1":"ascii"})"},
                                         Case{R"({"name":"+49 *0"})", R"(26 name {"p0":4,"p1":"name"})"},
                                         Case{R"({"name":"_x"})", R"(26 name {"p0":0,"p1":"name"})"},
                                         Case{R"({"name":"+x_ #"})", R"("+x_ #")"},
                                         Case{R"({"host":"ntp-1.example.net"})", R"("ntp-1.example.net")"},
                                         Case{R"({"host":"192.0.2.1"})", R"("192.0.2.1")"},
                                         Case{R"({"host":"192.0.2.256"})", R"(26 host {"p0":8,"p1":"host"})"},
                                         Case{R"({"host":"a..b"})", R"(26 host {"p0":2,"p1":"host"})"},
                                         Case{R"({"host":"a."})", R"(26 host {"p0":2,"p1":"host"})"},
                                         Case{R"({"host":"a-.b"})", R"(26 host {"p0":1,"p1":"host"})"},
                                         Case{R"({"label":""})", R"(25 label {"p0":0,"p1":1})"},
                                         Case{R"({"label":"a.b"})", R"(26 label {"p0":1,"p1":"label"})"},
                                         Case{R"({"hex":""})", R"("")"},
                                         Case{R"({"hex":"0aF"})", R"(25 hex {"p0":3,"p1":4})"},
                                         Case{R"({"hex":"0aFF0"})", R"(26 hex {"p0":5,"p1":"hex"})"},
                                         Case{R"({"hex":"0aFg"})", R"(26 hex {"p0":3,"p1":"hex"})"},
                                         Case{R"({"secret":""})", R"("")"},
                                         Case{R"({"secret":"$ob1$XKLo5fQGMc5pbQ"})", R"("$ob1$XKLo5fQGMc5pbQ")"},
                                         Case{R"({"secret":"secret"})", R"(34 secret {})"},
                                         Case{R"({"secret":"$ob1$6Le-Q00"})", R"(25 secret {"p0":1,"p1":3})"},
                                         Case{R"({"secret":"$ob1$AAAAAA"})", R"(25 secret {"p0":0,"p1":3})"}));

INSTANTIATE_TEST_SUITE_P(
    AddressesAndSets, Kinds,
    testing::Values(
        Case{R"({"address":"255.0.0.1"})", R"("255.0.0.1")"},
        Case{R"({"address":"1.2.3.04"})", R"(28 address {"p0":"1.2.3.04"})"},
        Case{R"({"address":"1.2.3"})", R"(28 address {"p0":"1.2.3"})"},
        Case{R"({"address":""})", R"(28 address {"p0":""})"},
        Case{R"({"group":"224.0.0.255"})", R"(22 group {"p0":"224.0.0.255","p1":"224.0.1.0","p2":"239.255.255.255"})"},
        Case{R"({"mac":"02:00:5e:00:00:fF"})", R"("02:00:5E:00:00:FF")"},
        Case{R"({"mac":"02-00-5e-00-00-ff"})", R"(29 mac {"p0":"02-00-5e-00-00-ff"})"},
        Case{R"({"mac":"02:00:5e:00:00:-1"})", R"(29 mac {"p0":"02:00:5e:00:00:-1"})"},
        Case{R"({"serial":[83,73,77,85,160,3,0,255,0,0]})", "[83,73,77,85,160,3,0,255,0,0]"},
        Case{R"({"serial":[83]})", R"(33 serial {"p0":10,"p1":1})"},
        Case{R"({"serial":[83,73,256,85,160,3,0,17,0,1]})",
             R"(22 serial.2 {"p0":256,"p1":0,"p2":255}; 22 serial.9 {"p0":1,"p1":0,"p2":0})"},
        Case{R"({"ports":[4,1]})", "[1,4]"}, Case{R"({"ports":[5]})", R"(22 ports.0 {"p0":5,"p1":1,"p2":4})"},
        Case{R"({"ports":[2,2]})", R"(36 ports.1 {"p0":2})"}, Case{R"({"ports":"1"})", R"(21 ports {"p0":"array"})"},
        Case{R"({"vlans":"4094,2,1,9-10,10"})", R"("1-2,9-10,4094")"}, Case{R"({"vlans":""})", R"("")"},
        Case{R"({"vlans":"4095"})", R"(30 vlans {"p0":"4095"})"}, Case{R"({"vlans":"1,"})", R"(30 vlans {"p0":"1,"})"},
        Case{R"({"vlans":"3-2"})", R"(30 vlans {"p0":"3-2"})"}));

INSTANTIATE_TEST_SUITE_P(
    Structures, Kinds,
    testing::Values(
        Case{R"({"child":{"value":9}})", R"({"value":9,"temperature":20})"},
        Case{R"({"pair":[{"value":2}]})", R"([{"value":2,"temperature":20},{"value":5,"temperature":20}])"},
        Case{R"({"list":[{}, {"temperature":-40}]})",
             R"([{"value":5,"temperature":20},{"value":5,"temperature":-40}])"},
        Case{R"({"list":[{},{},{},{}]})", R"(31 list {"p0":4,"p1":3})"}, Case{R"({"flags":[false]})", "[false,true]"},
        Case{R"({"flags":[1]})", R"(21 flags.0 {"p0":"boolean"})"},
        Case{R"({"list":[{},7]})", R"(21 list.1 {"p0":"object"})"},
        Case{R"({"child":{"x":1,"value":0}})", R"(22 child.value {"p0":0,"p1":1,"p2":9}; 20 child.x {"p0":"x"})"},
        Case{R"([1])", R"(21 data {"p0":"object"})"},
        // Order: the table's, then unknown keys in the order of the data. Keys are compared with their case.
        Case{R"({"Flag":true,"vlans":1,"flag":0,"":2})",
             R"(21 flag {"p0":"boolean"}; 21 vlans {"p0":"string"}; 20 Flag {"p0":"Flag"}; 20  {"p0":""})"},
        Case{R"({"big":64,"flag":true,"big":64})", R"(35 big {"p0":"big"})"},
        Case{"{\"\xFF\":1}", "20 \uFFFD {\"p0\":\"\uFFFD\"}"}));

TEST(HostileData, CostsTimeInProportionToItsSize) {
    std::string ports = "{\"ports\":[1";
    std::string vlans = "{\"vlans\":\"1-4094";
    std::string keys = "{\"flag\":true";
    std::string objects = "{\"list\":[{}";
    while (ports.size() < 2'000'000) {
        ports += ",1";
    }
    while (vlans.size() < 2'000'000) {
        vlans += ",1-4094";
    }
    while (keys.size() < 2'000'000) {
        keys += ",\"flag\":true,\"x\":[[[[{}]]]]";
    }
    while (objects.size() < 2'000'000) {
        objects += ",{}";
    }
    const auto start = std::chrono::steady_clock::now();
    EXPECT_TRUE(outcome(ports + "]}").ends_with(R"(36 ports.32 {"p0":1})"));
    EXPECT_EQ(outcome(vlans + "\"}"), "\"1-4094\"");
    EXPECT_TRUE(outcome(keys + "}").starts_with(R"(35 flag {"p0":"flag"}; 20 x)"));
    EXPECT_TRUE(outcome(objects + "]}").starts_with("31 list"));
    // Milliseconds as it should be; a walk per element would take minutes.
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
}

TEST(DamagedRecord, IsReportedAndNotRead) {
    Sample record{};
    record.list_count = 200;
    record.colour = static_cast<Sample::Colour>(9);
    std::ranges::fill(record.text, 'x');
    const Tree target(cJSON_CreateObject());
    cJSON* errors = nullptr;
    ASSERT_EQ(serialize_record(sample_table, &record, target.get(), &errors), 0);
    const Tree owner(errors);
    EXPECT_EQ(cJSON_GetArraySize(errors), 3);
}

} // namespace
} // namespace xpon::serializer
