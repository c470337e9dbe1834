// Answers of peers, as the custom layer decodes them and the handlers then make answers of them. The first byte of the
// input chooses the route, the second its indices; what follows is cut into the peers' answers.

#include "api_service/protocol/route_table.hpp"
#include "fuzz/service_in_process.hpp"
#include "ipc/ipc_handle.hpp"
#include "ipc/message.hpp"
#include "xpon/custom_layer/custom_layer.h"
#include "xpon/peer_side/operations.hpp"
#include "xpon/peer_side/payload.hpp"
#include "xpon/ranges/vlan_range.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <string>
#include <vector>

#include <fmt/format.h>

namespace {

using namespace xpon;
using peer_side::Operation;

enum class Form : std::uint8_t { record, list };

/// What an answer is when it is well-formed.
struct Answer {
    Operation operation;
    Form form;
    std::size_t size; ///< bytes of the record, or of an entry of the list
};
constexpr std::array answers{
    Answer{Operation::get_environment, Form::record, sizeof(System_environment_data)},
    Answer{Operation::get_front_link_states, Form::record, sizeof(Bitmap_uplink_port_range)},
    Answer{Operation::get_front_port_info, Form::record, sizeof(Front_port_info)},
    Answer{Operation::get_front_port_eddi, Form::record, sizeof(Front_port_sfp_eddi)},
    Answer{Operation::get_pon_modules, Form::record, sizeof(Pon_ports_sfp_extended_information)},
    Answer{Operation::get_pon_states, Form::record, sizeof(Pon_ports_states)},
    Answer{Operation::get_pon_port_type, Form::record, sizeof(Pon_port_type)},
    Answer{Operation::get_ont_states, Form::list, sizeof(Ont__state_info)},
    Answer{Operation::get_unactivated_onts, Form::list, sizeof(Ont_unactivated_entry)},
    Answer{Operation::get_dhcp_sessions, Form::list, sizeof(Dhcp_session)},
    Answer{Operation::get_pppoe_sessions, Form::list, sizeof(Pppoe_session)},
    Answer{Operation::get_igmp_snooping_vlans, Form::record, sizeof(Bitmap_vlan)},
    Answer{Operation::get_igmp_groups, Form::list, sizeof(Igmp_group)},
    Answer{Operation::get_mac_table, Form::list, sizeof(Bcm_mac_entry)},
    Answer{Operation::get_mac_table_of_onts, Form::list, sizeof(Bcm_mac_entry)},
    Answer{Operation::get_engine_id, Form::record, sizeof(Snmp_environment_data)},
};

/// The record of each kind of counters, from kind 1 on.
constexpr std::array counter_sizes{
    sizeof(Ont_gem_port_pm),
    sizeof(Ont_gem_port_nctp_pm),
    sizeof(Ont_eth_pm_history_data),
    sizeof(Ont_ethernet_pm_2),
    sizeof(Ont_eth_pm_history_data_3),
    sizeof(Ont_gal_eth_pm),
    sizeof(Ont_fec_pm_counters),
    sizeof(Ont_eth_frame_ext_pm),
    sizeof(Ont__get_gem_port_counters_response),
    sizeof(Ont__get_pon_counters_response),
};

Answer answer_to(Operation operation, std::span<const std::byte> question) {
    if (operation == Operation::get_ont_information) {
        const auto asked = peer_side::parse_record<peer_side::Ont_information_question>(question);
        return {operation, Form::record, counter_sizes.at(static_cast<std::size_t>(asked->kind) - 1)};
    }
    const auto* const row = std::ranges::find(answers, operation, &Answer::operation);
    return row == answers.end() ? Answer{operation, Form::record, 0} : *row;
}

/// All peers. Without input left, records are zero and lists are empty.
class InputPeers : public Ipc {
public:
    std::span<const std::uint8_t> input;

    [[nodiscard]] ipc::Address own_address() const noexcept override {
        return {};
    }
    Reply request(ipc::Address, std::uint16_t operation, std::span<const std::byte> question,
                  std::chrono::milliseconds) noexcept override {
        const auto form = take();
        if (form >= 0xf0) {
            return {form == 0xf0 ? ETIMEDOUT : form - 0xf8, {}};
        }
        const auto answer = answer_to(Operation{operation}, question);
        const std::uint32_t count = form % 8;
        Reply reply;
        if (answer.form == Form::list) {
            reply.payload =
                peer_side::record_payload(peer_side::ListHeader{count, static_cast<std::uint32_t>(answer.size)});
        }
        const auto size = answer.size * (answer.form == Form::list ? count : 1);
        // Few inputs would be of the right size by themselves.
        std::generate_n(std::back_inserter(reply.payload), form >= 0xe0 ? take() : size,
                        [this] { return static_cast<std::byte>(take()); });
        return reply;
    }
    std::optional<ipc::Address> ask_all(std::uint16_t, std::span<const std::byte>,
                                        std::chrono::milliseconds) noexcept override {
        return std::nullopt;
    }
    void notify_all(std::uint16_t, std::span<const std::byte>) noexcept override {}

    std::uint8_t take() {
        if (input.empty()) {
            return 0;
        }
        const auto byte = input.front();
        input = input.subspan(1);
        return byte;
    }
};

class Connected : public test::FakePeers {
public:
    [[nodiscard]] Ipc* raw() const override {
        return &peers;
    }

    mutable InputPeers peers;
};

bool asks_peers(std::string_view path) {
    constexpr std::string_view prefixes[] = {"monitoring.i",
                                             "monitoring.m",
                                             "monitoring.s",
                                             "utils.ont",
                                             "command.resettodefault",
                                             "command.reboot.ont",
                                             "command.reconfigure.ont",
                                             "command.reconfigure.pon"};
    return path.starts_with("configuration.CommonGCfg.system.snmp") ||
           std::ranges::any_of(prefixes, [&](auto prefix) { return path.starts_with(prefix); });
}

/// A frame with its NUL.
std::string request(std::uint8_t route, std::uint8_t indices) {
    std::vector<api_service::RouteRow> rows;
    std::ranges::copy_if(api_service::route_table(), std::back_inserter(rows),
                         [](const auto& row) { return asks_peers(row.path); });
    constexpr const char* choices[] = {R"(["1","1-2"])", R"(["1-8"])", "[]", R"(["1/1-2"])"};
    const auto& row = rows[route % rows.size()];
    return fmt::format(R"({{"session_id":"1","path":"{}","method":"{}","indices":{},)"
                       R"("data":{{"serial":[83,73,77,85,0,0,0,1,0,0]}}}})",
                       row.path, row.method, choices[indices % std::size(choices)]) +
           '\0';
}

} // namespace

// NOLINTNEXTLINE(readability-identifier-naming): the name is libFuzzer's
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const auto connected = std::make_shared<Connected>();
    static fuzz::ServiceInProcess service(connected);
    auto& peers = connected->peers;
    peers.input = {data, size};
    static_cast<void>(ipc::decode(std::as_bytes(peers.input)));
    const auto route = peers.take();
    const auto frame = request(route, peers.take());
    service.serve(frame);
    return 0;
}
