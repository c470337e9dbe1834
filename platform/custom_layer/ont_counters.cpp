#include "xpon/custom_layer/ont_counters.h"

#include "custom_layer/peer_request.hpp"
#include "xpon/peer_side/operations.hpp"

#include <array>

using namespace xpon::custom_layer;

namespace {

using Question = xpon::ipc::Ont_information_question;

template <class Record>
int ask_counters(Ipc* ipc, const Question& asked, void** out) {
    Record* record = nullptr;
    const int status = ask_block(ipc, xpon::ipc::Operation::get_ont_information, question(asked), &record);
    *out = record;
    return status;
}

struct Row {
    Ont_information_kind kind;
    int (*ask)(Ipc* ipc, const Question& asked, void** out);
};

constexpr std::array rows{
    Row{ont_information_gem_port_pm, ask_counters<Ont_gem_port_pm>},
    Row{ont_information_gem_port_nctp_pm, ask_counters<Ont_gem_port_nctp_pm>},
    Row{ont_information_eth_pm_history_data, ask_counters<Ont_eth_pm_history_data>},
    Row{ont_information_ethernet_pm_2, ask_counters<Ont_ethernet_pm_2>},
    Row{ont_information_eth_pm_history_data_3, ask_counters<Ont_eth_pm_history_data_3>},
    Row{ont_information_gal_eth_pm, ask_counters<Ont_gal_eth_pm>},
    Row{ont_information_fec_pm, ask_counters<Ont_fec_pm_counters>},
    Row{ont_information_eth_frame_ext_pm, ask_counters<Ont_eth_frame_ext_pm>},
    Row{ont_information_olt_gem_port, ask_counters<Ont__get_gem_port_counters_response>},
    Row{ont_information_olt_pon, ask_counters<Ont__get_pon_counters_response>},
};

} // namespace

int custom_layer__get_ont_information_by_index(Ipc* ipc, Ont_information_kind kind, std::uint8_t port,
                                               std::uint16_t ont, void** out) {
    if (out == nullptr) {
        return fail(EINVAL);
    }
    *out = nullptr;
    const auto* const row = std::ranges::find(rows, kind, &Row::kind);
    return row == rows.end() ? fail(EINVAL) : row->ask(ipc, {.kind = kind, .port = port, .ont = ont}, out);
}
