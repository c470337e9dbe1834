#include "xpon/custom_layer/ont_counters.h"

#include "custom_layer/peer_request.hpp"
#include "xpon/core/call_sequence.hpp"
#include "xpon/peer_side/operations.hpp"

#include <algorithm>
#include <array>
#include <chrono>

using namespace xpon::custom_layer;

namespace {

using Clock = std::chrono::steady_clock;
using OntQuestion = xpon::peer_side::Ont_information_question;

constexpr int onts_per_pon_port = 256;

/// The counters that a peer gave for one ONT and for some that follow it.
struct Counters {
    std::vector<std::byte> payload;
    std::span<const std::byte> left; ///< whole records, the next ONT's first
    Clock::time_point until;         ///< from then on they do not hold any more
};

/// What a sequence of calls that walks along a port has asked for already. Each question asks for more ONTs than the
/// one before, so that a short walk asks in vain for few, and a long one asks seldom.
struct Walk {
    static constexpr int most_ahead = 31;

    Ipc* ipc = nullptr;
    OntQuestion next{}; ///< the one whose turn it is
    int ahead = 0;
    Counters counters{};

    [[nodiscard]] bool comes_to(Ipc* other, const OntQuestion& asked) const {
        return ipc == other && next.kind == asked.kind && next.port == asked.port && next.ont == asked.ont;
    }
};

Counters ask(Ipc* ipc, const OntQuestion& asked, std::size_t record_size) {
    const auto now = Clock::now();
    Counters counters{fetch(ipc, xpon::peer_side::Operation::get_ont_information, question(asked)), {}, now};
    const auto payload = std::span(std::as_const(counters.payload));
    std::uint32_t holds_ms = 0;
    if (payload.size() < sizeof holds_ms) {
        xpon::core::fail_with(EIO);
    }
    std::memcpy(&holds_ms, payload.data(), sizeof holds_ms);
    const auto records = xpon::peer_side::parse_list(payload.subspan(sizeof holds_ms), record_size);
    if (!records || records->empty() || records->size() / record_size > asked.ahead + std::size_t{1}) {
        xpon::core::fail_with(EIO);
    }
    counters.left = *records;
    counters.until = now + std::chrono::milliseconds(holds_ms);
    return counters;
}

template <class Record>
Record take_first(Counters& counters) {
    const auto record = xpon::peer_side::parse_record<Record>(counters.left.first(sizeof(Record)));
    counters.left = counters.left.subspan(sizeof(Record));
    if (!is_sound(*record)) {
        xpon::core::fail_with(EIO);
    }
    return *record;
}

template <class Record>
Record counters_in(Walk& walk, Ipc* ipc, OntQuestion asked) {
    const bool goes_on = walk.comes_to(ipc, asked);
    if (!goes_on || walk.counters.left.empty() || Clock::now() >= walk.counters.until) {
        walk.ahead = goes_on ? std::min(2 * walk.ahead + 1, Walk::most_ahead) : 0;
        asked.ahead = static_cast<std::uint16_t>(std::clamp(onts_per_pon_port - asked.ont, 0, walk.ahead));
        walk.next = {};
        walk.counters = ask(ipc, asked, sizeof(Record));
        walk.ipc = ipc;
    }
    walk.next = asked;
    ++walk.next.ont;
    return take_first<Record>(walk.counters);
}

template <class Record>
void* fetch_counters(Ipc* ipc, const OntQuestion& asked) {
    auto block = make_block<Record>();
    if (auto* const sequence = xpon::core::CallSequence::current()) {
        *block = counters_in<Record>(sequence->kept<Walk>(), ipc, asked);
    } else {
        auto counters = ask(ipc, asked, sizeof(Record));
        *block = take_first<Record>(counters);
    }
    return block.release();
}

struct Row {
    Ont_information_kind kind;
    void* (*fetch)(Ipc* ipc, const OntQuestion& asked);
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
        return row->fetch(ipc, {.kind = kind, .port = port, .ont = ont});
    });
}
