#include "simulator/peers/peer_table.hpp"
#include "simulator/reports/bitmap.hpp"
#include "simulator/reports/counter_report.hpp"
#include "simulator/reports/ont_report.hpp"
#include "simulator/reports/port_report.hpp"

#include <algorithm>
#include <array>
#include <string>
#include <utility>
#include <vector>

#include <fmt/format.h>

namespace xpon::simulator {
namespace {

ipc::ServerAnswer answer_port_type(const AccessNetwork& network, std::span<const std::byte> payload) {
    const auto port = parse_port(payload, pon_ports);
    if (!port) {
        return {ERANGE, {}, {}};
    }
    // It is the module that makes the port one of a technology; the plant has no other than GPON.
    return {0, peer_side::record_payload(network.plant().pon_module(*port) == nullptr ? pon_unknown : pon_gpon), {}};
}

/// "1/3 1/4", no more than a reader takes in.
std::string list_of(std::span<const std::uint16_t> places) {
    static constexpr std::size_t most = 16;
    std::string text;
    for (const auto index : places.first(std::min(places.size(), most))) {
        const auto place = place_of_record(index);
        text += fmt::format(" {}/{}", place.port, place.ont);
    }
    return places.size() > most ? fmt::format("{} and {} more", text, places.size() - most) : text;
}

ipc::ServerAnswer restart_ports(Simulation& simulation, const ipc::ServerRequest& request) {
    const auto ports = parse_bitmap<Bitmap_pon_port_range>(request.payload);
    if (!ports) {
        return {EINVAL, {}, {}};
    }
    const auto is_meant = [&](unsigned port) { return contains(*ports, port); };
    simulation.restart_pon_ports(is_meant);
    std::string list;
    for (unsigned port = 1; port <= pon_ports; ++port) {
        list += is_meant(port) ? fmt::format(" {}", port) : "";
    }
    simulation.note(fmt::format("reconfigure of PON ports by {:#010x}:{}", request.client.value, list));
    return {};
}

template <OntCommand Command>
ipc::ServerAnswer command_onts(Simulation& simulation, const ipc::ServerRequest& request) {
    static constexpr std::array names{"reconfigure", "reset to default", "reboot"}; // by OntCommand
    const auto onts = parse_bitmap<Bitmap_ont_range>(request.payload);
    if (!onts) {
        return {EINVAL, {}, {}};
    }
    const auto told = simulation.command_onts(Command, [&](std::uint16_t index) { return contains(*onts, index); });
    simulation.note(fmt::format("{} of {} ONTs by {:#010x}:{}", names.at(static_cast<std::size_t>(Command)),
                                told.size(), request.client.value, list_of(told)));
    return {};
}

/// The list of an ONT and those that follow it.
using AnswerCounters = std::vector<std::byte> (*)(const Plant&, std::uint16_t first, unsigned count);

template <auto Report>
std::vector<std::byte> answer_counters(const Plant& plant, std::uint16_t first, unsigned count) {
    std::vector<decltype(Report(plant, first))> records;
    records.reserve(count);
    for (unsigned nth = 0; nth < count; ++nth) {
        records.push_back(Report(plant, static_cast<std::uint16_t>(first + nth)));
    }
    return peer_side::list_payload(std::span(std::as_const(records)));
}

/// For how long counters may be shown as those of now, in a walk that has begun. While the clock stands they stay what
/// they are until a step, and one that comes during a walk finds part of it done whoever asks how.
std::uint32_t counters_hold_ms(const PlantClock& clock) {
    static constexpr double plant_time_ms = 50;
    return static_cast<std::uint32_t>(clock.rate() > 0 ? plant_time_ms / clock.rate() : plant_time_ms);
}

/// By kind of information, from 1.
constexpr std::array<AnswerCounters, ont_information_olt_pon> counter_answers{
    answer_counters<report_gem_port_pm>,   answer_counters<report_gem_port_nctp_pm>,
    answer_counters<report_eth_pm>,        answer_counters<report_eth_pm_2>,
    answer_counters<report_eth_pm_3>,      answer_counters<report_gal_eth_pm>,
    answer_counters<report_fec_pm>,        answer_counters<report_eth_frame_ext_pm>,
    answer_counters<report_olt_gem_ports>, answer_counters<report_olt_pon>,
};

ipc::ServerAnswer answer_ont_information(Simulation& simulation, const ipc::ServerRequest& request) {
    const auto question = peer_side::parse_record<peer_side::Ont_information_question>(request.payload);
    if (!question || question->kind < ont_information_gem_port_pm || question->kind > ont_information_olt_pon) {
        return {EINVAL, {}, {}};
    }
    const bool exists =
        question->port >= 1 && question->port <= pon_ports && question->ont >= 1 && question->ont <= max_onts_per_port;
    if (!exists) {
        return {ERANGE, {}, {}};
    }
    const auto index = record_index_of({.port = question->port, .ont = question->ont});
    const auto hold_ms = counters_hold_ms(simulation.clock());
    const auto behind = hold_ms == 0 ? 0 : std::min<unsigned>(question->ahead, max_onts_per_port - question->ont);
    const auto list = counter_answers.at(question->kind - 1U)(simulation.plant(), index, 1 + behind);
    return {0, peer_side::headed_payload(hold_ms, list), {}};
}

} // namespace

std::span<const PeerRoute> pon_state_machine_routes() {
    using peer_side::Operation;
    static constexpr std::array routes{
        PeerRoute{Operation::get_pon_states, answer_record<report_pon_states>},
        PeerRoute{Operation::get_pon_port_type, answer_port_type},
        PeerRoute{Operation::get_ont_states, answer_list<Bitmap_ont_range, report_ont_states>},
        PeerRoute{Operation::get_unactivated_onts, answer_list<Bitmap_pon_port_range, report_unactivated>},
        PeerRoute{Operation::get_ont_information, answer_ont_information},
        PeerRoute{Operation::reconfigure_pon_ports, restart_ports},
        PeerRoute{Operation::reconfigure_onts, command_onts<OntCommand::reconfigure>},
        PeerRoute{Operation::reset_onts, command_onts<OntCommand::reset>},
        PeerRoute{Operation::reboot_onts, command_onts<OntCommand::reboot>},
    };
    return routes;
}

} // namespace xpon::simulator
