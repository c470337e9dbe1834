#include "ipc/ipc_handle.hpp"
#include "xpon/custom_layer/custom_layer.h"
#include "xpon/ipc/payload.hpp"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <functional>
#include <iterator>
#include <limits>
#include <span>
#include <string>
#include <vector>

#include <gmock/gmock.h>

namespace xpon {
namespace {

/// A peer that answers whatever a test wants.
struct AnyPeer : public Ipc {
    Reply request(ipc::Address peer, ipc::Operation operation, std::span<const std::byte> payload,
                  std::chrono::milliseconds) override {
        asked = peer;
        EXPECT_EQ(ipc::owner_of(operation), peer);
        question.assign(payload.begin(), payload.end());
        return reply;
    }
    std::optional<Refusal> ask_all(ipc::Operation, std::span<const std::byte>, std::chrono::milliseconds) override {
        return std::nullopt;
    }
    void notify_all(ipc::Operation, std::span<const std::byte>) override {}

    Reply reply;
    ipc::Address asked;
    std::vector<std::byte> question;
};

/// A call, with its output released and whether it left something there.
struct Call {
    const char* name;
    std::function<int(Ipc*)> run;
    std::vector<std::byte> good_answer;
    /// Answers of the right size that no reader may trust.
    std::vector<std::vector<std::byte>> bad_answers{};
};

template <class Record>
Record zero() {
    Record record;
    std::memset(&record, 0, sizeof record);
    return record;
}

template <class Record>
std::vector<std::byte> edited(const std::function<void(Record&)>& edit) {
    auto record = zero<Record>();
    edit(record);
    return ipc::record_payload(record);
}

template <class Entry>
std::vector<std::byte> edited_list(const std::function<void(Entry&)>& edit) {
    std::vector<Entry> entries(2, zero<Entry>());
    edit(entries.back());
    return ipc::list_payload(std::span(std::as_const(entries)));
}

std::vector<std::byte> list_header(std::uint32_t count, std::uint32_t entry_size) {
    return ipc::record_payload(ipc::ListHeader{count, entry_size});
}

template <std::size_t Size>
void fill(char (&text)[Size]) {
    std::memset(text, 'x', Size);
}

/// Runs a call that fills a record, and checks that a failing one leaves it zero.
template <class Record>
int run_record(const std::function<int(Record*)>& call) {
    Record record;
    std::memset(&record, 0xff, sizeof record);
    const int status = call(&record);
    if (status != 0) {
        const auto cause = errno;
        const auto expected = zero<Record>();
        EXPECT_EQ(std::memcmp(&record, &expected, sizeof record), 0);
        errno = cause;
    }
    return status;
}

/// Runs a call that makes a block, and checks that it makes one exactly when it succeeds.
template <class Record>
int run_block(const std::function<int(Record**)>& call) {
    char anything = 0;
    auto* block = reinterpret_cast<Record*>(&anything);
    const int status = call(&block);
    const auto cause = errno;
    EXPECT_EQ(block != nullptr, status == 0);
    std::free(block);
    errno = cause;
    return status;
}

/// A call for counters, whose answer tells how many instances it has.
template <class Record>
Call counters(const char* name, Ont_information_kind kind, unsigned too_many = max_counter_instances + 1) {
    return {name,
            [kind](Ipc* ipc) {
                return run_block<void>(
                    [&](void** out) { return custom_layer__get_ont_information_by_index(ipc, kind, 16, 256, out); });
            },
            edited<Record>([](auto&) {}),
            {edited<Record>([&](auto& record) { record.count = static_cast<decltype(record.count)>(too_many); }),
             edited<Record>([](auto& record) { record.count = static_cast<decltype(record.count)>(-1); })}};
}

std::vector<Call> counter_calls() {
    using GemPorts = Ont__get_gem_port_counters_response;
    std::vector<Call> calls{
        counters<Ont_gem_port_pm>("GEM ports", ont_information_gem_port_pm),
        counters<Ont_gem_port_nctp_pm>("GEM port CTPs", ont_information_gem_port_nctp_pm),
        counters<Ont_eth_pm_history_data>("Ethernet", ont_information_eth_pm_history_data),
        counters<Ont_ethernet_pm_2>("Ethernet 2", ont_information_ethernet_pm_2),
        counters<Ont_eth_pm_history_data_3>("Ethernet 3", ont_information_eth_pm_history_data_3),
        counters<Ont_gal_eth_pm>("GAL Ethernet", ont_information_gal_eth_pm),
        counters<Ont_fec_pm_counters>("FEC", ont_information_fec_pm),
        counters<Ont_eth_frame_ext_pm>("Ethernet frames", ont_information_eth_frame_ext_pm),
        counters<GemPorts>("GEM ports of the OLT", ont_information_olt_gem_port, max_gem_ports_per_ont + 1),
    };
    calls.back().bad_answers.push_back(
        edited<GemPorts>([](auto& record) { record.entries[9].group = static_cast<Gem_port_group>(3); }));
    calls.push_back({"PON of the OLT",
                     [](Ipc* ipc) {
                         return run_block<void>([&](void** out) {
                             return custom_layer__get_ont_information_by_index(ipc, ont_information_olt_pon, 1, 1, out);
                         });
                     },
                     edited<Ont__get_pon_counters_response>([](auto&) {})});
    return calls;
}

std::vector<Call> all_calls() {
    static const Bitmap_ont_range onts{.size = 4096, .bits = {}};
    static const Bitmap_pon_port_range ports{.size = 17, .bits = {}};
    using Environment = System_environment_data;
    using Modules = Pon_ports_sfp_extended_information;
    std::vector<Call> calls{
        {"environment",
         [](Ipc* ipc) {
             return run_record<Environment>(
                 [&](auto* out) { return custom_layer__get_system_environment_info(ipc, out); });
         },
         edited<Environment>([](auto&) {}),
         {edited<Environment>([](auto& data) { data.fan_count = 9; }),
          edited<Environment>([](auto& data) { data.temp_sensor_count = 255; }),
          edited<Environment>([](auto& data) { fill(data.power_sources[1].date); })}},
        {"link states",
         [](Ipc* ipc) {
             return run_record<Bitmap_uplink_port_range>(
                 [&](auto* out) { return custom_layer__get_front_ports_link_states(ipc, out); });
         },
         edited<Bitmap_uplink_port_range>([](auto&) {}),
         {edited<Bitmap_uplink_port_range>([](auto& bitmap) { bitmap.size = 0xffffffff; })}},
        {"front port",
         [](Ipc* ipc) {
             return run_record<Front_port_info>(
                 [&](auto* out) { return custom_layer__get_front_port_info(ipc, 1, out); });
         },
         edited<Front_port_info>([](auto&) {}),
         {edited<Front_port_info>([](auto& info) { fill(info.speed); }),
          edited<Front_port_info>([](auto& info) { fill(info.sfp.revision); }),
          edited<Front_port_info>([](auto& info) { info.sfp.condition = static_cast<sfp_condition>(3); })}},
        {"front diagnostics",
         [](Ipc* ipc) {
             return run_record<Front_port_sfp_eddi>(
                 [&](auto* out) { return custom_layer__get_front_port_sfp_eddi(ipc, 1, out); });
         },
         edited<Front_port_sfp_eddi>([](auto&) {})},
        {"PON modules",
         [](Ipc* ipc) {
             return run_block<Modules>(
                 [&](auto** out) { return custom_layer__get_pon_ports_sfp_extended_information(ipc, out); });
         },
         edited<Modules>([](auto&) {}),
         {edited<Modules>([](auto& modules) { modules.count = 17; }),
          edited<Modules>([](auto& modules) { fill(modules.ports[15].sfp.vendor); })}},
        {"PON states",
         [](Ipc* ipc) {
             return run_block<Pon_ports_states>(
                 [&](auto** out) { return custom_layer__get_pon_ports_states(ipc, out); });
         },
         edited<Pon_ports_states>([](auto&) {}),
         {edited<Pon_ports_states>([](auto& states) { states.count = 255; })}},
        {"PON type",
         [](Ipc* ipc) {
             return run_record<Pon_port_type>([&](auto* out) { return custom_layer__get_pon_port_type(ipc, 1, out); });
         },
         edited<Pon_port_type>([](auto&) {})},
        {"ONT states",
         [](Ipc* ipc) {
             return run_block<Ont__get_state_info_response>(
                 [&](auto** out) { return custom_layer__get_ont_state_info_by_range(ipc, &onts, out); });
         },
         edited_list<Ont__state_info>([](auto&) {}),
         {edited_list<Ont__state_info>([](auto& ont) { ont.alloc_count = 10; }),
          edited_list<Ont__state_info>([](auto& ont) { fill(ont.software_version); }), list_header(1, 1),
          list_header(0xffffffff, sizeof(Ont__state_info)), list_header(0x80000000, 0)}},
        {"unactivated",
         [](Ipc* ipc) {
             return run_block<Ont_unactivated_info>(
                 [&](auto** out) { return custom_layer__get_ont_unactivated_by_range(ipc, &ports, out); });
         },
         edited_list<Ont_unactivated_entry>([](auto&) {}),
         {edited_list<Ont_unactivated_entry>([](auto& ont) { fill(ont.password); }),
          list_header(1, sizeof(Ont_unactivated_entry))}},
        {"engine id",
         [](Ipc* ipc) {
             return run_record<Snmp_environment_data>(
                 [&](auto* out) { return custom_layer__generating_engine_id(ipc, out); });
         },
         edited<Snmp_environment_data>([](auto&) {}),
         {edited<Snmp_environment_data>([](auto& data) { fill(data.engine_id); })}},
        {"select image", [](Ipc* ipc) { return custom_layer__select_image(ipc, firmware_alternate, nullptr); }, {}},
        {"PON ports", [](Ipc* ipc) { return custom_layer__reconfigure_pon_port(ipc, &ports); }, {}},
        {"reconfigure", [](Ipc* ipc) { return custom_layer__reconfigure_ont(ipc, &onts); }, {}},
        {"reset", [](Ipc* ipc) { return custom_layer__omci_default(ipc, &onts); }, {}},
        {"reboot", [](Ipc* ipc) { return custom_layer__omci_reboot(ipc, &onts); }, {}},
        {"DHCP sessions",
         [](Ipc* ipc) {
             return run_block<Dhcp_get_sessions_msg>(
                 [&](auto** out) { return custom_layer__get_dhcp_session(ipc, out); });
         },
         edited_list<Dhcp_session>([](auto&) {}),
         {list_header(1, sizeof(Dhcp_session))}},
        {"PPPoE sessions",
         [](Ipc* ipc) {
             return run_block<Pppoe_get_sessions_msg>(
                 [&](auto** out) { return custom_layer__get_pppoe_session(ipc, out); });
         },
         edited_list<Pppoe_session>([](auto&) {}),
         {list_header(1, sizeof(Pppoe_session))}},
        {"MAC table",
         [](Ipc* ipc) {
             return run_block<Bcm_get_mac_table_response>(
                 [&](auto** out) { return custom_layer__get_mac_table(ipc, out); });
         },
         edited_list<Bcm_mac_entry>([](auto&) {}),
         {edited_list<Bcm_mac_entry>([](auto& entry) { entry.kind = static_cast<Switch_port_kind>(4); }),
          edited_list<Bcm_mac_entry>([](auto& entry) { entry.type = static_cast<Mac_entry_type>(2); })}},
        {"MAC table of ONTs",
         [](Ipc* ipc) {
             return run_block<Bcm_get_mac_table_response>(
                 [&](auto** out) { return custom_layer__get_mac_table_by_ont_range(ipc, &onts, out); });
         },
         edited_list<Bcm_mac_entry>([](auto&) {})},
    };
    std::ranges::move(counter_calls(), std::back_inserter(calls));
    return calls;
}

class PeerCallsTest : public testing::Test {
protected:
    int errno_of(const Call& call) {
        errno = 0;
        return call.run(&peer) == 0 ? 0 : errno;
    }

    AnyPeer peer;
};

TEST_F(PeerCallsTest, FailWithWhatThePeerOrTheConnectionSays) {
    for (const auto& call : all_calls()) {
        SCOPED_TRACE(call.name);
        peer.reply = {0, call.good_answer};
        EXPECT_EQ(errno_of(call), 0);
        for (const int status : {ECONNREFUSED, ETIMEDOUT, EHOSTDOWN, ERANGE, ENODATA}) {
            // A payload beside a failure is not looked at.
            peer.reply = {status, call.good_answer};
            EXPECT_EQ(errno_of(call), status);
        }
        for (const int status : {-1, 4096, std::numeric_limits<int>::min()}) {
            peer.reply = {status, {}};
            EXPECT_EQ(errno_of(call), EIO);
        }
        errno = 0;
        EXPECT_EQ(call.run(nullptr), -1);
        EXPECT_EQ(errno, EINVAL);
    }
}

TEST_F(PeerCallsTest, DoNotTrustAnswers) {
    for (const auto& call : all_calls()) {
        SCOPED_TRACE(call.name);
        for (std::size_t size = 0; size < call.good_answer.size(); ++size) {
            peer.reply = {0, {call.good_answer.begin(), call.good_answer.begin() + static_cast<std::ptrdiff_t>(size)}};
            EXPECT_EQ(errno_of(call), EIO) << size;
        }
        peer.reply = {0, call.good_answer};
        peer.reply.payload.push_back({});
        EXPECT_EQ(errno_of(call), EIO);
        for (const auto& bad : call.bad_answers) {
            peer.reply = {0, bad};
            EXPECT_EQ(errno_of(call), EIO);
        }
    }
}

TEST_F(PeerCallsTest, GiveWhatThePeerAnswered) {
    std::vector<Ont__state_info> states(3, zero<Ont__state_info>());
    states[2].ont_id = 17;
    states[2].alloc_count = 9;
    states[2].alloc_ids[8] = 399;
    peer.reply = {0, ipc::list_payload(std::span(std::as_const(states)))};
    const Bitmap_ont_range range{.size = 4096, .bits = {5}};
    Ont__get_state_info_response* response = nullptr;
    ASSERT_EQ(custom_layer__get_ont_state_info_by_range(&peer, &range, &response), 0);
    EXPECT_EQ(peer.question, ipc::record_payload(range));
    ASSERT_EQ(response->count, 3U);
    EXPECT_EQ(std::memcmp(response->entries, states.data(), 3 * sizeof states[0]), 0);
    std::free(response);

    peer.reply = {0, edited<Front_port_sfp_eddi>([](auto& eddi) { eddi.power = 0.5; })};
    Front_port_sfp_eddi eddi{};
    ASSERT_EQ(custom_layer__get_front_port_sfp_eddi(&peer, 7, &eddi), 0);
    EXPECT_EQ(eddi.power, 0.5);
    EXPECT_EQ(peer.question, ipc::record_payload(std::uint8_t{7}));
}

TEST_F(PeerCallsTest, AskForTheCountersOfOneOnt) {
    peer.reply = {0, edited<Ont_eth_frame_ext_pm>([](auto& record) { record.downstream.veip.octets = 77; })};
    void* out = nullptr;
    const auto kind = ont_information_eth_frame_ext_pm;
    ASSERT_EQ(custom_layer__get_ont_information_by_index(&peer, kind, 3, 256, &out), 0);
    EXPECT_EQ(static_cast<Ont_eth_frame_ext_pm*>(out)->downstream.veip.octets, 77U);
    std::free(out);
    EXPECT_EQ(peer.question, ipc::record_payload(ipc::Ont_information_question{kind, 3, 256}));

    // No peer is asked what no peer knows.
    peer.question.clear();
    for (const int no_kind : {0, 11, 255}) {
        out = &peer;
        errno = 0;
        const auto asked = static_cast<Ont_information_kind>(no_kind);
        EXPECT_EQ(custom_layer__get_ont_information_by_index(&peer, asked, 1, 1, &out), -1);
        EXPECT_EQ(errno, EINVAL);
        EXPECT_EQ(out, nullptr);
    }
    EXPECT_EQ(custom_layer__get_ont_information_by_index(&peer, kind, 1, 1, nullptr), -1);
    EXPECT_TRUE(peer.question.empty());
}

TEST(StateTexts, AreThereForEveryValue) {
    EXPECT_STREQ(ont_state_to_str(ont_operational), "OPERATIONAL");
    EXPECT_STREQ(ont_state_to_str(ont_disabled), "DISABLED");
    EXPECT_STREQ(channel_state_to_str(pon_channel_fault), "FAULT");
    EXPECT_STREQ(Pon_port_type_to_str(pon_xgs_pon), "XGS-PON");
    for (unsigned value = 0; value < 256; ++value) {
        EXPECT_EQ(std::string(channel_state_to_str(static_cast<Pon_channel_state>(value))) == "UNKNOWN", value > 4);
        EXPECT_EQ(std::string(ont_state_to_str(static_cast<Ont_state>(value))) == "UNKNOWN", value < 1 || value > 13);
    }
}

TEST(OntIdentity, BytesAndIndex) {
    std::uint8_t bytes[10];
    unsigned_long_serial_to_bin(0x53494d55'a0030011U, bytes);
    EXPECT_THAT(bytes, testing::ElementsAre(83, 73, 77, 85, 160, 3, 0, 17, 0, 0));
    EXPECT_EQ(get_ont_config_index(0, 0), 0);
    EXPECT_EQ(get_ont_config_index(15, 255), 4095);
    EXPECT_EQ(get_ont_config_index(16, 0), 65535);
    EXPECT_EQ(get_ont_config_index(0, 256), 65535);
}

} // namespace
} // namespace xpon
