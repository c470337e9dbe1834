#include "xpon/custom_layer/ont_counters.h"

#include "custom_layer/peer_request.hpp"
#include "xpon/peer_side/operations.hpp"

#include <array>

using namespace xpon::custom_layer;

namespace {

template <class Record>
void* fetch_counters(Ipc* ipc, const Question& question) {
    return fetch_block<Record>(ipc, xpon::peer_side::Operation::get_ont_information, question);
}

struct Row {
    Ont_information_kind kind;
    void* (*fetch)(Ipc* ipc, const Question& question);
};

constexpr std::array rows{
    Row{ont_information_gem_port_pm, fetch_counters<Ont_gem_port_pm>},
    Row{ont_information_gem_port_nctp_pm, fetch_counters<Ont_gem_port_nctp_pm>},
    Row{ont_information_eth_pm_history_data, fetch_counters<Ont_eth_pm_history_data>},
    Row{ont_information_ethernet_pm_2, fetch_counters<Ont_ethernet_pm_2>},
    Row{ont_information_eth_pm_history_data_3, fetch_counters<Ont_eth_pm_history_data_3>},
    Row{ont_information_gal_eth_pm, fetch_counters<Ont_gal_eth_pm>},
    Row{ont_information_fec_pm, fetch_counters<Ont_fec_pm_counters>},
    Row{ont_information_eth_frame_ext_pm, fetch_counters<Ont_eth_frame_ext_pm>},
    Row{ont_information_olt_gem_port, fetch_counters<Ont__get_gem_port_counters_response>},
    Row{ont_information_olt_pon, fetch_counters<Ont__get_pon_counters_response>},
};

} // namespace

int custom_layer__get_ont_information_by_index(Ipc* ipc, Ont_information_kind kind, std::uint8_t port,
                                               std::uint16_t ont, void** out) {
    return xpon::core::c_function(out, [&] {
        const auto* const row = std::ranges::find(rows, kind, &Row::kind);
        if (row == rows.end()) {
            xpon::core::fail_with(EINVAL);
        }
        return row->fetch(ipc, question(xpon::peer_side::Ont_information_question{kind, port, ont}));
    });
}
