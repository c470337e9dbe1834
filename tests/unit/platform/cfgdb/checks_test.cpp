#include "tests/unit/platform/cfgdb/edits.hpp"
#include "tests/unit/platform/cfgdb/temporary_root.hpp"

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
    std::string name;
    std::vector<Edit> running; ///< what a first commit accepts
    std::vector<Edit> edits;
    std::string refusal; ///< below "configuration."; "" = accepted
};

std::string ont_json(int serial, const std::string& more = "") {
    return fmt::format(R"({{"serial":[83,73,77,85,0,0,{},{},0,0]{}}})", serial / 256, serial % 256, more);
}

const std::string in_band = R"({"enabled":true,"address_mode":"dhcp","vlan_id":100})";
const std::string bridged = R"(,"ont_template":1)";
const std::string triple_play = R"(,"ont_template":2)";
const std::string custom_1to1 = R"({"mode":"custom","cross_connect":6,"c_vid":)";

std::vector<Case> cases() {
    const std::string profile = "CommonGCfg.profiles.profiles_ont.";
    return {
        {"NoManagement",
         {},
         {edit<OobPort>(R"({"enabled":false})")},
         "CommonGCfg.management: No management interface is enabled"},
        {"Overlap",
         {},
         {edit<Management>(R"({"enabled":true,"ip_address":"192.168.1.1","prefix_length":16})")},
         "CommonGCfg.management: Management networks overlap"},
        {"NoOverlap", {}, {edit<Management>(R"({"enabled":true,"ip_address":"192.168.76.1","prefix_length":24})")}, ""},
        {"ManagementVlanOfProfile",
         {edit_ont(1, 1, ont_json(1, bridged))},
         {edit<Management>(in_band)},
         profile + "cross_connect.1: VLAN 100 is the management VLAN"},
        {"ManagementVlanOfService",
         {edit<Management>(in_band)},
         {edit_ont(3, 17, ont_json(1)), edit_service(3, 17, 2, R"({"mode":"custom","cross_connect":4,"s_vid":100})"),
          edit_ont(3, 18, ont_json(1))},
         "ZebGCfg.pon.ont.service.3.17.2: VLAN 100 is the management VLAN (and 2 more)"},
        {"VlanNotCarried",
         {edit_ont(1, 1, ont_json(1, bridged)), edit_ont(1, 2, ont_json(2, bridged))},
         [] {
             std::vector<Edit> ports;
             for (unsigned port = 1; port <= 16; ++port) {
                 ports.push_back(edit<FrontPort>(R"({"tagged_vlans":"101-4094","enabled":true})", port));
             }
             return ports;
         }(),
         profile + "cross_connect.1: VLAN 100 is on no enabled front port"},
        {"ManagementVlanNotCarried",
         {},
         [] {
             std::vector<Edit> ports{edit<Management>(R"({"enabled":true,"address_mode":"dhcp","vlan_id":7})")};
             for (unsigned port = 1; port <= 16; ++port) {
                 ports.push_back(edit<FrontPort>(port == 3 ? R"({"enabled":false})" : R"({"tagged_vlans":""})", port));
             }
             return ports;
         }(),
         "CommonGCfg.management: VLAN 7 is on no enabled front port"},
        {"PortInTwoChannels",
         {edit<PortChannel>(R"({"enabled":true,"members":[1,2]})", 2)},
         {edit<PortChannel>(R"({"enabled":true,"members":[2,3]})", 1)},
         "ZebGCfg.switch_config.port_channel.2: Front port 2 is already in port channel 1"},
        {"TooFewMembers",
         {},
         {edit<PortChannel>(R"({"enabled":true,"members":[1],"min_links":2})", 4)},
         "ZebGCfg.switch_config.port_channel.4: Port channel has 1 members, needs 2"},
        {"MembersDiffer",
         {edit<PortChannel>(R"({"enabled":true,"members":[1,2,3]})")},
         {edit<FrontPort>(R"({"pvid":9,"tagged_vlans":"1-9"})", 2)},
         "ZebGCfg.switch_config.port_channel.1: Front ports 1 and 2 differ in pvid (and 1 more)"},
        {"TemplateReference",
         {},
         {edit<OntTemplate>(R"({"name":"x","services":[{"cross_connect":99}]})", 5)},
         profile + "ont_template.5: Undefined cross-connect profile 99"},
        {"UndefinedTemplateRefersFreely", {}, {edit<OntTemplate>(R"({"services":[{"cross_connect":99}]})", 5)}, ""},
        {"ProfileGone",
         {edit<ProfileOntShaping>(R"({"name":"three"})", 3), edit_ont(2, 1, ont_json(1, R"(,"shaping_profile":3)"))},
         {edit<ProfileOntShaping>("{}", 3)},
         "ZebGCfg.pon.ont.2.1: Undefined shaping profile 3"},
        {"TemplateGone",
         {edit<OntTemplate>(R"({"name":"x"})", 9), edit_ont(2, 1, ont_json(1, R"(,"ont_template":9)"))},
         {edit<OntTemplate>("{}", 9)},
         "ZebGCfg.pon.ont.2.1: Undefined template 9"},
        {"CustomDbaGone",
         {edit<Dba>(R"({"name":"x"})", 9), edit_ont(2, 1, ont_json(1)),
          edit_service(2, 1, 8, R"({"mode":"custom","dba":9})")},
         {edit<Dba>("{}", 9)},
         "ZebGCfg.pon.ont.service.2.1.8: Undefined dba profile 9"},
        {"UnconfiguredOntRefersFreely", {}, {edit_service(2, 1, 8, R"({"mode":"custom","dba":9})")}, ""},
        {"SameSerial",
         {edit_ont(2, 5, ont_json(7))},
         {edit_ont(2, 4, ont_json(7))},
         "ZebGCfg.pon.ont.2.5: ONT serial is already used by ONT 2/4"},
        {"SerialMoves", {edit_ont(2, 5, ont_json(7))}, {edit_ont(2, 4, ont_json(7)), edit_ont(2, 5, ont_json(8))}, ""},
        {"TwoVlanModels",
         {},
         {edit<CrossConnect>(R"({"name":"x","s_vid":100,"vlan_model":"one_to_one"})", 9)},
         profile + "cross_connect.9: VLAN 100 is used both as n_to_1 and as one_to_one"},
        {"MulticastIsServiceVlan",
         {},
         {edit<CrossConnect>(R"({"name":"x","s_vid":201})", 9)},
         profile + "cross_connect.9: VLAN 201 is used both as multicast_vid and as s_vid"},
        {"ModelOfOverriddenVlan",
         {edit<CrossConnect>(R"({"name":"x","s_vid":600})", 9), edit_ont(1, 1, ont_json(1)),
          edit_service(1, 1, 2, R"({"mode":"custom","cross_connect":9,"s_vid":100})")},
         {edit<CrossConnect>(R"({"name":"x","s_vid":600,"vlan_model":"tls","uni_match":"any"})", 9)},
         "ZebGCfg.pon.ont.service.1.1.2: VLAN 100 is used both as n_to_1 and as tls"},
        {"OneToOneNeedsCVlan",
         {},
         {edit_ont(1, 1, ont_json(1)), edit_service(1, 1, 1, custom_1to1 + "0}")},
         "ZebGCfg.pon.ont.service.1.1.1: One-to-one service has no C-VLAN"},
        {"VlanPairTwice",
         {edit_ont(1, 1, ont_json(1)), edit_service(1, 1, 1, custom_1to1 + "9}")},
         {edit_ont(4, 2, ont_json(2)), edit_service(4, 2, 3, custom_1to1 + "9}")},
         "ZebGCfg.pon.ont.service.4.2.3: VLAN pair 500.9 is already used by ONT 1/1 service 1"},
        {"ServicesClash",
         {edit_ont(1, 1, ont_json(1, bridged))},
         {edit_service(1, 1, 3, custom_1to1 + "9}")},
         "ZebGCfg.pon.ont.service.1.1.3: Services 1 and 3 clash on port 1"},
        {"SameVlans",
         {edit_ont(1, 1, ont_json(1, triple_play))},
         {edit_service(1, 1, 8, R"({"mode":"custom","cross_connect":2})")},
         "ZebGCfg.pon.ont.service.1.1.8: Services 1 and 8 use the same VLANs"},
        {"GuaranteedBandwidth",
         {edit<Dba>(R"({"name":"x","tcont_type":"type1","fixed_kbps":1243328,"maximum_kbps":1243328,)"
                    R"("additional":"none"})",
                    9),
          edit_ont(16, 1, ont_json(1)), edit_service(16, 1, 1, R"({"mode":"custom","cross_connect":1,"dba":9})")},
         {edit_ont(16, 256, ont_json(2))},
         "ZebGCfg.pon.port_state.16: Guaranteed upstream bandwidth 1244992 kbit/s exceeds 1244160 kbit/s"},
        {"SharedTcontCountsOnce",
         {edit<Dba>(R"({"name":"x","tcont_type":"type1","fixed_kbps":640000,"maximum_kbps":640000,)"
                    R"("additional":"none"})",
                    9),
          edit_ont(1, 1, ont_json(1)), edit_service(1, 1, 1, R"({"mode":"custom","cross_connect":2,"dba":9})"),
          edit_service(1, 1, 2, R"({"mode":"custom","cross_connect":3,"dba":9})")},
         {edit<Dba>(R"({"name":"x","tcont_type":"type1","fixed_kbps":640000,"maximum_kbps":640000,)"
                    R"("additional":"none","shared":false})",
                    9)},
         "ZebGCfg.pon.port_state.1: Guaranteed upstream bandwidth 1280832 kbit/s exceeds 1244160 kbit/s"},
        {"OntLimit",
         {edit_ont(1, 1, ont_json(1)), edit_ont(1, 2, ont_json(2, R"(,"enabled":false)"))},
         {edit<PonPort>(R"({"ont_limit":1})"), edit_ont(1, 2, ont_json(2))},
         "ZebGCfg.pon.port_state.1: PON port has 2 ONTs, limit is 1"},
        {"PasswordsNeeded",
         {edit_ont(2, 3, ont_json(1)), edit_ont(2, 4, ont_json(2, R"(,"password":"PW")"))},
         {edit<PonPort>(R"({"onu_auth":"serial_password"})", 2)},
         "ZebGCfg.pon.ont.2.3: ONT has no password"},
        {"PasswordOfNewOnt",
         {edit<PonPort>(R"({"onu_auth":"serial_password"})", 2)},
         {edit_ont(2, 3, ont_json(1))},
         "ZebGCfg.pon.ont.2.3: ONT has no password"},
        {"VoiceNeedsPort",
         {edit_ont(1, 1, ont_json(1, triple_play))},
         {edit_ont(1, 1, ont_json(1, triple_play + R"(,"ports_profile":1)"))},
         "ZebGCfg.pon.ont.service.1.1.3: Voice service without telephone port"},
        {"VoicePortGoes",
         {edit_ont(1, 1, ont_json(1, triple_play))},
         {edit<ProfileOntPortsCfg>(R"({"name":"data-voice"})", 2)},
         "ZebGCfg.pon.ont.service.1.1.3: Voice service without telephone port"},
        {"LineNeedsVoice",
         {},
         {edit_ont(1, 1, ont_json(1, bridged + R"(,"lines":[{},{"enabled":true,"number":"1"}])"))},
         "ZebGCfg.pon.ont.1.1: Telephone line 2 without voice service"},
        {"ManagementNeedsProfile",
         {},
         {edit_ont(1, 1, ont_json(1)), edit_service(1, 1, 1, R"({"mode":"custom","cross_connect":5})")},
         "ZebGCfg.pon.ont.service.1.1.1: Management service without management profile"},
        {"DeletedOntNeedsNothing",
         {edit_ont(1, 1, ont_json(1, triple_play))},
         {edit_ont(1, 1, "{}"), edit<ProfileOntPortsCfg>("{}", 2), edit<OntTemplate>("{}", 2)},
         ""},
    };
}

class Checks : public testing::TestWithParam<Case> {};

TEST_P(Checks, NameTheFirstFaultAndChangeNothing) {
    const test::TemporaryRoot root;
    CfgDbWrapper client("TEST");
    const auto& [name, running, edits, refusal] = GetParam();
    if (!running.empty()) {
        test::apply(client, running);
        ASSERT_EQ(test::commit(client), "");
    }
    test::apply(client, edits);
    EXPECT_EQ(test::commit(client), refusal.empty() ? "" : "configuration." + refusal);
    if (!refusal.empty()) {
        // The candidate is as it was, and so is running: the same commit fails again, and nothing is left to undo.
        EXPECT_EQ(test::commit(client), "configuration." + refusal);
        ASSERT_TRUE(client.rollback().has_value());
        EXPECT_EQ(test::commit(client), "Nothing to commit");
    }
}

INSTANTIATE_TEST_SUITE_P(Configuration, Checks, testing::ValuesIn(cases()),
                         [](const auto& row) { return row.param.name; });

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
    const test::TemporaryRoot root;
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
            std::vector<std::byte> record(element(id.element).table.size);
            test::database_of(client).read(Store::candidate, id, record.data());
            whole.write(id, record.data());
        }
        const auto verdict = test::commit(client);
        const auto expected = whole.commit([](auto) { return core::success(); });
        if (verdict == "Nothing to commit") {
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
    const test::TemporaryRoot root;
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
    for (unsigned index = 1; index < 4096; ++index) {
        const auto number = ont_number(static_cast<std::uint16_t>(index));
        test::apply(client, {edit_ont(number.pon_port, number.ont,
                                      ont_json(static_cast<int>(index) + 1, R"(,"enabled":false)" + triple_play))});
    }
    ASSERT_EQ(test::commit(client), "");
    const auto with_all = time_of_commits();
    RecordProperty("microseconds_with_one", static_cast<int>(with_one.count() / 1000));
    RecordProperty("microseconds_with_all", static_cast<int>(with_all.count() / 1000));
    EXPECT_LT(with_all, 10 * with_one + std::chrono::milliseconds(1));
}

} // namespace
} // namespace xpon::cfgdb
