#include "ipc/ipc_handle.hpp"
#include "xpon/core/call_sequence.hpp"
#include "xpon/custom_layer/custom_layer.h"
#include "xpon/peer_side/operations.hpp"
#include "xpon/peer_side/payload.hpp"

#include <cerrno>
#include <cstring>
#include <functional>
#include <limits>
#include <span>
#include <string>
#include <vector>

#include <gmock/gmock.h>

namespace xpon {
namespace {

/// A peer that answers whatever a test wants.
struct AnyPeer : public Ipc {
    [[nodiscard]] ipc::Address own_address() const noexcept override {
        return {};
    }
    Reply request(ipc::Address peer, std::uint16_t operation, std::span<const std::byte> payload,
                  std::chrono::milliseconds) noexcept override {
        EXPECT_EQ(peer_side::owner_of(peer_side::Operation{operation}), peer);
        question.assign(payload.begin(), payload.end());
        return reply;
    }
    std::optional<ipc::Address> ask_all(std::uint16_t, std::span<const std::byte>,
                                        std::chrono::milliseconds) noexcept override {
        return std::nullopt;
    }
    void notify_all(std::uint16_t, std::span<const std::byte>) noexcept override {}

    Reply reply;
    std::vector<std::byte> question;
};

/// A call to a peer, made with an output of its own.
struct Call {
    const char* name;
    std::function<int(Ipc*)> run;
    std::vector<std::byte> good_answer{};
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
using Faults = std::vector<std::function<void(Record&)>>;

/// A call whose answer is one record, with that answer and its faulty forms.
template <class Record>
Call answered_by_record(const char* name, std::function<int(Ipc*)> run, const Faults<Record>& faults) {
    Call call{name, std::move(run), peer_side::record_payload(zero<Record>())};
    for (const auto& fault : faults) {
        auto record = zero<Record>();
        fault(record);
        call.bad_answers.push_back(peer_side::record_payload(record));
    }
    return call;
}

/// A call that fills a record. A failing one leaves it zero, which the good answer is as well.
template <class Record>
Call fills(const char* name, std::function<int(Ipc*, Record*)> call, const Faults<Record>& faults = {}) {
    const auto run = [call](Ipc* ipc) {
        Record record;
        std::memset(&record, 0xff, sizeof record);
        const int status = call(ipc, &record);
        const auto cause = errno;
        const auto expected = zero<Record>();
        EXPECT_EQ(std::memcmp(&record, &expected, sizeof record), 0);
        errno = cause;
        return status;
    };
    return answered_by_record(name, run, faults);
}

/// Runs a call that makes a block, and checks that it makes one exactly when it succeeds.
template <class Block>
std::function<int(Ipc*)> run_block(const std::function<int(Ipc*, Block**)>& call) {
    return [call](Ipc* ipc) {
        char anything = 0;
        auto* block = reinterpret_cast<Block*>(&anything);
        const int status = call(ipc, &block);
        const auto cause = errno;
        EXPECT_EQ(block != nullptr, status == 0);
        std::free(block);
        errno = cause;
        return status;
    };
}

/// A call that makes a block of one record.
template <class Record>
Call makes(const char* name, std::function<int(Ipc*, Record**)> call, const Faults<Record>& faults = {}) {
    return answered_by_record<Record>(name, run_block(call), faults);
}

/// A call that makes a block of a list.
template <class Entry, class Response>
Call lists(const char* name, std::function<int(Ipc*, Response**)> call, const Faults<Entry>& faults = {}) {
    const auto list = [](std::vector<Entry> entries) {
        return peer_side::list_payload(std::span(std::as_const(entries)));
    };
    const std::vector<Entry> good(2, zero<Entry>());
    Call result{name, run_block(call), list(good)};
    for (const auto& fault : faults) {
        auto entries = good;
        fault(entries.back());
        result.bad_answers.push_back(list(entries));
    }
    const std::uint32_t size = sizeof(Entry);
    for (const auto& header : {peer_side::ListHeader{1, size}, {1, 1}, {0xffffffff, size}, {0x80000000, 0}}) {
        result.bad_answers.push_back(peer_side::record_payload(header));
    }
    return result;
}

/// `call` with an argument between the peer and the output.
template <class Function, class Argument>
auto of(Function call, Argument argument) {
    return [=](Ipc* ipc, auto* out) { return call(ipc, argument, out); };
}

template <std::size_t Size>
void fill(char (&text)[Size]) {
    std::memset(text, 'x', Size);
}

/// Asks for the counters of a kind that come as `Record`.
template <class Record>
int get_counters(Ipc* ipc, Ont_information_kind kind, Record** out) {
    void* block = *out;
    const int status = custom_layer__get_ont_information_by_index(ipc, kind, 16, 256, &block);
    *out = static_cast<Record*>(block);
    return status;
}

/// An answer with these records, which holds so long.
template <class Record>
std::vector<std::byte> counters_payload(std::span<const std::byte> records, std::uint32_t holds_ms = 0) {
    const auto count = static_cast<std::uint32_t>(records.size() / sizeof(Record));
    return peer_side::headed_payload(holds_ms,
                                     peer_side::headed_payload(peer_side::ListHeader{count, sizeof(Record)}, records));
}

/// A call for counters.
template <class Record>
Call counters_with(const char* name, Ont_information_kind kind, const Faults<Record>& faults) {
    auto call = makes<Record>(name, of(get_counters<Record>, kind), faults);
    call.good_answer = counters_payload<Record>(call.good_answer);
    for (auto& answer : call.bad_answers) {
        answer = counters_payload<Record>(answer);
    }
    // None, and one more than was asked for.
    call.bad_answers.push_back(counters_payload<Record>({}));
    call.bad_answers.push_back(counters_payload<Record>(std::vector<std::byte>(2 * sizeof(Record))));
    return call;
}

/// The same, whose answer tells how many instances it has.
template <class Record>
Call counters(const char* name, Ont_information_kind kind, unsigned limit = max_counter_instances) {
    using Count = decltype(Record::count);
    return counters_with<Record>(name, kind,
                                 {[limit](auto& record) { record.count = static_cast<Count>(limit + 1); },
                                  [](auto& record) { record.count = static_cast<Count>(-1); }});
}

const std::vector<Call>& all_calls() {
    static const Bitmap_ont_range onts{.size = 4096, .bits = {}};
    static const Bitmap_pon_port_range ports{.size = 17, .bits = {}};
    static const std::uint8_t port = 1;
    static const std::vector<Call> calls{
        fills<System_environment_data>("environment", custom_layer__get_system_environment_info,
                                       {[](auto& data) { data.fan_count = 9; },
                                        [](auto& data) { data.temp_sensor_count = 255; },
                                        [](auto& data) { fill(data.power_sources[1].date); }}),
        fills<Bitmap_uplink_port_range>("link states", custom_layer__get_front_ports_link_states,
                                        {[](auto& bitmap) { bitmap.size = 0xffffffff; }}),
        fills<Front_port_info>("front port", of(custom_layer__get_front_port_info, port),
                               {[](auto& info) { fill(info.speed); }, [](auto& info) { fill(info.sfp.revision); },
                                [](auto& info) { info.sfp.condition = static_cast<sfp_condition>(3); }}),
        fills<Front_port_sfp_eddi>("front diagnostics", of(custom_layer__get_front_port_sfp_eddi, port)),
        fills<Pon_port_type>("PON type", of(custom_layer__get_pon_port_type, port)),
        fills<Snmp_environment_data>("engine id", custom_layer__generating_engine_id,
                                     {[](auto& data) { fill(data.engine_id); }}),
        makes<Pon_ports_sfp_extended_information>(
            "PON modules", custom_layer__get_pon_ports_sfp_extended_information,
            {[](auto& modules) { modules.count = 17; }, [](auto& modules) { fill(modules.ports[15].sfp.vendor); }}),
        makes<Pon_ports_states>("PON states", custom_layer__get_pon_ports_states,
                                {[](auto& states) { states.count = 255; }}),
        lists<Ont__state_info, Ont__get_state_info_response>(
            "ONT states", of(custom_layer__get_ont_state_info_by_range, &onts),
            {[](auto& ont) { ont.alloc_count = 10; }, [](auto& ont) { fill(ont.software_version); }}),
        lists<Ont_unactivated_entry, Ont_unactivated_info>("unactivated",
                                                           of(custom_layer__get_ont_unactivated_by_range, &ports),
                                                           {[](auto& ont) { fill(ont.password); }}),
        lists<Dhcp_session, Dhcp_get_sessions_msg>("DHCP sessions", custom_layer__get_dhcp_session),
        lists<Pppoe_session, Pppoe_get_sessions_msg>("PPPoE sessions", custom_layer__get_pppoe_session),
        lists<Bcm_mac_entry, Bcm_get_mac_table_response>(
            "MAC table", custom_layer__get_mac_table,
            {[](auto& entry) { entry.kind = static_cast<Switch_port_kind>(4); },
             [](auto& entry) { entry.type = static_cast<Mac_entry_type>(2); }}),
        lists<Bcm_mac_entry, Bcm_get_mac_table_response>("MAC table of ONTs",
                                                         of(custom_layer__get_mac_table_by_ont_range, &onts)),
        {"select image", [](Ipc* ipc) { return custom_layer__select_image(ipc, firmware_alternate, nullptr); }},
        {"PON ports", [](Ipc* ipc) { return custom_layer__reconfigure_pon_port(ipc, &ports); }},
        {"reconfigure", [](Ipc* ipc) { return custom_layer__reconfigure_ont(ipc, &onts); }},
        {"reset", [](Ipc* ipc) { return custom_layer__omci_default(ipc, &onts); }},
        {"reboot", [](Ipc* ipc) { return custom_layer__omci_reboot(ipc, &onts); }},
        counters<Ont_gem_port_pm>("GEM ports", ont_information_gem_port_pm),
        counters<Ont_gem_port_nctp_pm>("GEM port CTPs", ont_information_gem_port_nctp_pm),
        counters<Ont_eth_pm_history_data>("Ethernet", ont_information_eth_pm_history_data),
        counters<Ont_ethernet_pm_2>("Ethernet 2", ont_information_ethernet_pm_2),
        counters<Ont_eth_pm_history_data_3>("Ethernet 3", ont_information_eth_pm_history_data_3),
        counters<Ont_gal_eth_pm>("GAL Ethernet", ont_information_gal_eth_pm),
        counters<Ont_fec_pm_counters>("FEC", ont_information_fec_pm),
        counters<Ont_eth_frame_ext_pm>("Ethernet frames", ont_information_eth_frame_ext_pm),
        counters<Ont__get_gem_port_counters_response>("GEM ports of the OLT", ont_information_olt_gem_port,
                                                      max_gem_ports_per_ont),
        counters_with<Ont__get_gem_port_counters_response>(
            "GEM port group", ont_information_olt_gem_port,
            {[](auto& record) { record.entries[9].group = static_cast<Gem_port_group>(3); }}),
        counters_with<Ont__get_pon_counters_response>("PON of the OLT", ont_information_olt_pon, {}),
    };
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

TEST_F(PeerCallsTest, AskForTheCountersOfOneOnt) {
    auto record = zero<Ont_eth_frame_ext_pm>();
    record.downstream.veip.octets = 77;
    peer.reply = {0, counters_payload<Ont_eth_frame_ext_pm>(peer_side::record_payload(record))};
    void* out = nullptr;
    const auto kind = ont_information_eth_frame_ext_pm;
    ASSERT_EQ(custom_layer__get_ont_information_by_index(&peer, kind, 3, 256, &out), 0);
    EXPECT_EQ(static_cast<Ont_eth_frame_ext_pm*>(out)->downstream.veip.octets, 77U);
    std::free(out);
    EXPECT_EQ(peer.question, peer_side::record_payload(peer_side::Ont_information_question{kind, 3, 256}));

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
    EXPECT_TRUE(peer.question.empty());
}

/// Gives counters that tell the ONT, and counts who asks.
struct CountingPeer : public AnyPeer {
    Reply request(ipc::Address, std::uint16_t, std::span<const std::byte> payload,
                  std::chrono::milliseconds) noexcept override {
        const auto asked = *peer_side::parse_record<peer_side::Ont_information_question>(payload);
        ++questions;
        std::vector<std::byte> records;
        for (unsigned ont = asked.ont; ont <= asked.ont + (holds_ms == 0 ? 0U : asked.ahead); ++ont) {
            auto record = zero<Ont__get_pon_counters_response>();
            record.rx_bytes = asked.port * 1000 + ont;
            const auto bytes = peer_side::record_payload(record);
            records.insert(records.end(), bytes.begin(), bytes.end());
        }
        return {0, counters_payload<Ont__get_pon_counters_response>(records, holds_ms)};
    }

    std::uint32_t holds_ms = 0;
    unsigned questions = 0;
};

TEST(OntCounterWalks, AskAheadWithinASequenceForAsLongAsAnswersHold) {
    static constexpr std::uint32_t for_ever = 3600000;
    const auto walk = [](CountingPeer& peer, std::uint8_t port, unsigned first, unsigned last) {
        for (unsigned ont = first; ont <= last; ++ont) {
            void* out = nullptr;
            ASSERT_EQ(custom_layer__get_ont_information_by_index(&peer, ont_information_olt_pon, port,
                                                                 static_cast<std::uint16_t>(ont), &out),
                      0);
            EXPECT_EQ(static_cast<Ont__get_pon_counters_response*>(out)->rx_bytes, port * 1000 + ont);
            std::free(out);
        }
    };
    CountingPeer fresh;
    fresh.holds_ms = for_ever;
    walk(fresh, 1, 1, 256);
    EXPECT_EQ(fresh.questions, 256U) << "nobody said that there would be more";
    {
        CountingPeer peer;
        peer.holds_ms = for_ever;
        const core::CallSequence sequence;
        walk(peer, 1, 1, 256);
        EXPECT_LT(peer.questions, 16U);
        peer.questions = 0;
        walk(peer, 2, 7, 7);
        walk(peer, 3, 7, 7);
        walk(peer, 3, 9, 9);
        walk(peer, 3, 8, 8);
        EXPECT_EQ(peer.questions, 4U) << "no walk";
        // Answers to one are nobody else's.
        CountingPeer other;
        walk(peer, 4, 1, 3);
        walk(other, 4, 4, 4);
        EXPECT_EQ(other.questions, 1U);
    }
    const core::CallSequence sequence;
    CountingPeer stepped;
    walk(stepped, 1, 1, 256);
    EXPECT_EQ(stepped.questions, 256U) << "each answer holds for its question only";
}

TEST(StateTexts, AreThereForEveryValue) {
    EXPECT_STREQ(ont_state_to_str(ont_operational), "OPERATIONAL");
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
    EXPECT_EQ(get_ont_config_index(15, 255), 4095);
    EXPECT_EQ(get_ont_config_index(16, 0), 65535);
    EXPECT_EQ(get_ont_config_index(0, 256), 65535);
}

} // namespace
} // namespace xpon
