#include "tests/support/temporary_olt_root.hpp"
#include "tests/unit/platform/cfgdb/edits.hpp"

#include <chrono>
#include <random>
#include <set>

#include <fmt/format.h>
#include <gmock/gmock.h>

namespace xpon::cfgdb {
namespace {

using test::edit;
using test::Edit;
using test::edit_ont;
using test::edit_service;

using Dba = ProfileOntDba;
using CrossConnect = ProfileOntCrossConnect;
using Management = GSystemManagement;

struct Case {
    std::vector<Edit> edits;
    std::string refusal;         ///< below "configuration."; "" = accepted
    std::vector<Edit> running{}; ///< what a commit before accepts
};

std::string ont_json(int serial, const std::string& more = "") {
    return fmt::format(R"({{"serial":[83,73,77,85,0,0,{},{},0,0]{}}})", serial / 256, serial % 256, more);
}

std::string dba_json(int fixed_kbps, const std::string& more = "") {
    return fmt::format(
        R"({{"name":"x","tcont_type":"type1","fixed_kbps":{0},"maximum_kbps":{0},"additional":"none"{1}}})", fixed_kbps,
        more);
}

/// All front ports as the JSON says, but the third, which is disabled.
std::vector<Edit> edit_front_ports(const std::string& json) {
    std::vector<Edit> edits;
    for (unsigned port = 1; port <= 16; ++port) {
        edits.push_back(edit<FrontPort>(port == 3 ? R"({"enabled":false})" : json, port));
    }
    return edits;
}

const std::string in_band = R"({"enabled":true,"address_mode":"dhcp","vlan_id":100})";
const std::string bridged = R"(,"ont_template":1)";
const std::string triple_play = R"(,"ont_template":2)";
const std::string custom_1to1 = R"({"mode":"custom","cross_connect":6,"c_vid":)";
const std::string profiles = "CommonGCfg.profiles.profiles_ont.";

/// At least one row for each check, in their order.
const Case cases[] = {
    {{edit<OobPort>(R"({"enabled":false})")}, "CommonGCfg.management: No management interface is enabled"},
    {{edit<Management>(R"({"enabled":true,"ip_address":"192.168.1.1","prefix_length":16})")},
     "CommonGCfg.management: Management networks overlap"},
    {{edit<Management>(R"({"enabled":true,"ip_address":"192.168.76.1","prefix_length":24})")}, ""},
    {{edit_ont(3, 17, ont_json(1)), edit_service(3, 17, 2, R"({"mode":"custom","cross_connect":4,"s_vid":100})"),
      edit_ont(3, 18, ont_json(1))},
     "ZebGCfg.pon.ont.service.3.17.2: VLAN 100 is the management VLAN (and 2 more)",
     {edit<Management>(in_band)}},
    {edit_front_ports(R"({"tagged_vlans":"101-4094"})"),
     profiles + "cross_connect.1: VLAN 100 is on no enabled front port",
     {edit_ont(1, 1, ont_json(1, bridged))}},
    {edit_front_ports(R"({"tagged_vlans":""})"),
     "CommonGCfg.management: VLAN 100 is on no enabled front port",
     {edit<Management>(in_band)}},
    {{edit<PortChannel>(R"({"enabled":true,"members":[2,3]})", 1)},
     "ZebGCfg.switch_config.port_channel.2: Front port 2 is already in port channel 1",
     {edit<PortChannel>(R"({"enabled":true,"members":[1,2]})", 2)}},
    {{edit<PortChannel>(R"({"enabled":true,"members":[1],"min_links":2})", 4)},
     "ZebGCfg.switch_config.port_channel.4: Port channel has 1 members, needs 2"},
    {{edit<FrontPort>(R"({"pvid":9,"tagged_vlans":"1-9"})", 2)},
     "ZebGCfg.switch_config.port_channel.1: Front ports 1 and 2 differ in pvid (and 1 more)",
     {edit<PortChannel>(R"({"enabled":true,"members":[1,2,3]})")}},
    {{edit<OntTemplate>(R"({"name":"x","services":[{"cross_connect":99}]})", 5)},
     profiles + "ont_template.5: Undefined cross-connect profile 99"},
    // What is undefined or not configured refers freely.
    {{edit<OntTemplate>(R"({"services":[{"cross_connect":99}]})", 5),
      edit_service(2, 1, 8, R"({"mode":"custom","dba":9})")},
     ""},
    {{edit<ProfileOntShaping>("{}", 3)},
     "ZebGCfg.pon.ont.2.1: Undefined shaping profile 3",
     {edit<ProfileOntShaping>(R"({"name":"three"})", 3), edit_ont(2, 1, ont_json(1, R"(,"shaping_profile":3)"))}},
    {{edit_ont(2, 1, ont_json(1, R"(,"ont_template":9)"))}, "ZebGCfg.pon.ont.2.1: Undefined template 9"},
    {{edit_ont(2, 1, ont_json(1)), edit_service(2, 1, 8, R"({"mode":"custom","dba":9})")},
     "ZebGCfg.pon.ont.service.2.1.8: Undefined dba profile 9"},
    {{edit_ont(2, 4, ont_json(7))},
     "ZebGCfg.pon.ont.2.5: ONT serial is already used by ONT 2/4",
     {edit_ont(2, 5, ont_json(7))}},
    {{edit_ont(2, 4, ont_json(7)), edit_ont(2, 5, ont_json(8))}, "", {edit_ont(2, 5, ont_json(7))}},
    {{edit<CrossConnect>(R"({"name":"x","s_vid":100,"vlan_model":"one_to_one"})", 9)},
     profiles + "cross_connect.9: VLAN 100 is used both as n_to_1 and as one_to_one"},
    {{edit<CrossConnect>(R"({"name":"x","s_vid":201})", 9)},
     profiles + "cross_connect.9: VLAN 201 is used both as multicast_vid and as s_vid"},
    {{edit_ont(1, 1, ont_json(1)), edit_service(1, 1, 1, custom_1to1 + "0}")},
     "ZebGCfg.pon.ont.service.1.1.1: One-to-one service has no C-VLAN"},
    {{edit_ont(4, 2, ont_json(2)), edit_service(4, 2, 3, custom_1to1 + "9}")},
     "ZebGCfg.pon.ont.service.4.2.3: VLAN pair 500.9 is already used by ONT 1/1 service 1",
     {edit_ont(1, 1, ont_json(1)), edit_service(1, 1, 1, custom_1to1 + "9}")}},
    {{edit_ont(1, 1, ont_json(1, bridged)), edit_service(1, 1, 3, custom_1to1 + "9}")},
     "ZebGCfg.pon.ont.service.1.1.3: Services 1 and 3 clash on port 1"},
    {{edit_ont(1, 1, ont_json(1, triple_play)), edit_service(1, 1, 8, R"({"mode":"custom","cross_connect":2})")},
     "ZebGCfg.pon.ont.service.1.1.8: Services 1 and 8 use the same VLANs"},
    {{edit_ont(16, 256, ont_json(2))},
     "ZebGCfg.pon.port_state.16: Guaranteed upstream bandwidth 1244992 kbit/s exceeds 1244160 kbit/s",
     {edit<Dba>(dba_json(1243328), 9), edit_ont(16, 1, ont_json(1)),
      edit_service(16, 1, 1, R"({"mode":"custom","cross_connect":1,"dba":9})")}},
    {{edit<Dba>(dba_json(640000, R"(,"shared":false)"), 9)},
     "ZebGCfg.pon.port_state.1: Guaranteed upstream bandwidth 1280832 kbit/s exceeds 1244160 kbit/s",
     {edit<Dba>(dba_json(640000), 9), edit_ont(1, 1, ont_json(1)),
      edit_service(1, 1, 1, R"({"mode":"custom","cross_connect":2,"dba":9})"),
      edit_service(1, 1, 2, R"({"mode":"custom","cross_connect":3,"dba":9})")}},
    {{edit<PonPort>(R"({"ont_limit":1})"), edit_ont(1, 2, ont_json(2))},
     "ZebGCfg.pon.port_state.1: PON port has 2 ONTs, limit is 1",
     {edit_ont(1, 1, ont_json(1)), edit_ont(1, 2, ont_json(2, R"(,"enabled":false)"))}},
    {{edit<PonPort>(R"({"onu_auth":"serial_password"})", 2)},
     "ZebGCfg.pon.ont.2.3: ONT has no password",
     {edit_ont(2, 3, ont_json(1)), edit_ont(2, 4, ont_json(2, R"(,"password":"PW")"))}},
    {{edit_ont(1, 1, ont_json(1, triple_play + R"(,"ports_profile":1)"))},
     "ZebGCfg.pon.ont.service.1.1.3: Voice service without telephone port",
     {edit_ont(1, 1, ont_json(1, triple_play))}},
    {{edit_ont(1, 1, ont_json(1, bridged + R"(,"lines":[{},{"enabled":true,"number":"1"}])"))},
     "ZebGCfg.pon.ont.1.1: Telephone line 2 without voice service"},
    {{edit_ont(1, 1, ont_json(1)), edit_service(1, 1, 1, R"({"mode":"custom","cross_connect":5})")},
     "ZebGCfg.pon.ont.service.1.1.1: Management service without management profile"},
    {{edit_ont(1, 1, "{}"), edit<ProfileOntPortsCfg>("{}", 2), edit<OntTemplate>("{}", 2)},
     "", // a deleted ONT needs nothing
     {edit_ont(1, 1, ont_json(1, triple_play))}},
};

TEST(Checks, NameTheFirstFaultAndChangeNothing) {
    for (const auto& [edits, refusal, running] : cases) {
        SCOPED_TRACE(refusal);
        const test::TemporaryOltRoot root;
        CfgDbWrapper client("TEST");
        test::apply(client, running);
        ASSERT_EQ(test::commit(client), running.empty() ? test::nothing_to_commit : "");
        test::apply(client, edits);
        EXPECT_EQ(test::commit(client), refusal.empty() ? "" : "configuration." + refusal);
        if (!refusal.empty()) {
            // The candidate is as it was, and so is running: the same commit fails again, and nothing is left to undo.
            EXPECT_EQ(test::commit(client), "configuration." + refusal);
            ASSERT_TRUE(client.rollback().has_value());
            EXPECT_EQ(test::commit(client), test::nothing_to_commit);
        }
    }
}

/// Random edits that often contradict each other, on few numbers so that they meet.
Edit random_edit(std::mt19937& random) {
    const auto pick = [&](unsigned from, unsigned to) {
        return from + static_cast<unsigned>(random()) % (to - from + 1);
    };
    const auto profile = pick(1, 8);
    switch (pick(0, 9)) {
    case 0:
        return edit<OntTemplate>(
            fmt::format(R"({{"name":"{}","ports_profile":{},"management_profile":{},"services":[{{"cross_connect":{},)"
                        R"("dba":{}}},{{"cross_connect":{}}}]}})",
                        random() % 6 == 0 ? "" : "t", pick(0, 3), pick(0, 3), pick(0, 8), pick(0, 5), pick(0, 8)),
            pick(1, 3));
    case 1:
        return edit<CrossConnect>(
            fmt::format(R"({{"name":"c","s_vid":{},"c_vid":{},"vlan_model":"{}","termination":"{}","uni_ports":[{}]}})",
                        pick(98, 102), pick(0, 2), random() % 5 == 0 ? "one_to_one" : "n_to_1",
                        random() % 2 == 0 ? "veip" : "bridge", pick(1, 4)),
            profile);
    case 2:
        return edit<Dba>(fmt::format(R"({{"name":"{}","tcont_type":"type2","assured_kbps":{},"maximum_kbps":{},)"
                                     R"("additional":"none","shared":{}}})",
                                     random() % 8 == 0 ? "" : "d", 6400U * profile, 6400U * profile, random() % 2 == 0),
                         pick(1, 5));
    case 3:
        return edit<PonPort>(fmt::format(R"({{"ont_limit":{},"onu_auth":"{}"}})", pick(3, 9),
                                         random() % 9 == 0 ? "serial_password" : "serial"),
                             pick(1, 2));
    case 4:
        return edit<Management>(fmt::format(R"({{"enabled":true,"address_mode":"dhcp","vlan_id":{}}})", pick(98, 103)));
    case 5:
        return edit<ProfileOntPortsCfg>(fmt::format(R"({{"name":"{}","pots":[{}],"sip_proxy":"s"}})",
                                                    random() % 8 == 0 ? "" : "p", random() % 2 == 0),
                                        pick(1, 3));
    case 6:
        return edit_service(pick(1, 2), pick(1, 6), pick(1, 3),
                            fmt::format(R"({{"mode":"{}","cross_connect":{},"dba":{},"s_vid":{},"c_vid":{}}})",
                                        random() % 2 == 0 ? "custom" : "template", pick(0, 8), pick(0, 5),
                                        random() % 3 == 0 ? pick(98, 102) : 0, pick(0, 3)));
    default:
        return edit_ont(pick(1, 2), pick(1, 6),
                        random() % 4 == 0
                            ? "{}"
                            : ont_json(static_cast<int>(pick(1, 20)),
                                       fmt::format(R"(,"ont_template":{},"enabled":{},"password":"{}")", pick(0, 3),
                                                   random() % 4 != 0, random() % 3 == 0 ? "" : "PW")));
    }
}

// The checks look only at what changed, through the indexes. A database that gets the same configuration in one commit
// looks at all of it. Both must come to the same verdict, to the word.
TEST(Checks, JudgeAChangeAsTheyJudgeTheWhole) {
    std::mt19937 random(20);
    const test::TemporaryOltRoot root;
    CfgDbWrapper client("TEST");
    std::set<RecordId> ever_set;
    int accepted = 0;
    int refused = 0;
    for (int round = 0; round < 700; ++round) {
        for (auto count = random() % 3 + 1; count > 0; --count) {
            const auto change = random_edit(random);
            ever_set.insert(change.id);
            test::apply(client, {change});
        }
        const auto whole_folder = root.path() / "whole";
        std::filesystem::remove_all(whole_folder);
        const Database whole(whole_folder);
        for (const auto& id : ever_set) {
            test::Record record(element(id.element).table.size);
            test::database_of(client).read(Store::candidate, id, record.data());
            whole.write(id, record.data());
        }
        const auto verdict = test::commit(client);
        const auto expected = whole.commit([](auto) { return core::success(); });
        if (verdict == test::nothing_to_commit) {
            continue;
        }
        ASSERT_EQ(verdict, expected.has_value() ? "" : expected.error().info->message) << "round " << round;
        (verdict.empty() ? accepted : refused) += 1;
        if (!verdict.empty()) {
            ASSERT_TRUE(client.rollback().has_value());
        }
    }
    EXPECT_GT(accepted, 100);
    EXPECT_GT(refused, 100);
}

// A commit of one leaf must not look at thousands of ONTs that it does not concern.
TEST(Checks, CostTheSameWhateverIsConfigured) {
    const test::TemporaryOltRoot root;
    CfgDbWrapper client("TEST");
    const auto time_of_commits = [&] {
        auto shortest = std::chrono::nanoseconds::max();
        for (int round = 0; round < 50; ++round) {
            test::apply(client,
                        {edit_ont(1, 1, ont_json(1, triple_play + fmt::format(R"(,"description":"{}")", round)))});
            const auto start = std::chrono::steady_clock::now();
            EXPECT_EQ(test::commit(client), "");
            shortest = std::min<std::chrono::nanoseconds>(shortest, std::chrono::steady_clock::now() - start);
        }
        return shortest;
    };
    const auto with_one = time_of_commits();
    for (int number = 2; number <= 4096; ++number) {
        test::apply(client, {edit<PonOnt>(ont_json(number, R"(,"enabled":false)" + triple_play),
                                          static_cast<unsigned>(number))});
    }
    ASSERT_EQ(test::commit(client), "");
    EXPECT_LT(time_of_commits(), 10 * with_one + std::chrono::milliseconds(1));
}

} // namespace
} // namespace xpon::cfgdb
