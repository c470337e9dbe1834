#include "simulator/events/ont_alarms.hpp"

#include <array>

namespace xpon::simulator {
namespace {

/// Shares of wrong bits, of the 10^-4 to 10^-9 that an operator may choose from.
constexpr double signal_fail = 1e-5;
constexpr double signal_degrade = 1e-7;

bool is_heard(const Plant::Ont& ont) {
    return ont.situation->has_power && ont.situation->channel_is_up && !ont.situation->is_cut;
}

bool has_fault(const Plant& plant, const Plant::Ont& ont, FaultKind kind) {
    return is_heard(ont) && plant.faults().has(kind, ont_target(ont.hardware->position));
}

double wrong_bits(const Plant& plant, const Plant::Ont& ont) {
    const auto split = plant.parameters().plant->split_of(ont.situation->seen_port);
    return BitErrorRate::upstream(plant.random(), *ont.hardware, split, *ont.line).mean();
}

constexpr std::array alarms{
    OntAlarm{"DGi", "dying gasp: the ONT lost its power",
             [](const auto&, const auto& ont) { return !ont.situation->has_power; }},
    OntAlarm{"LOSi", "loss of signal: no light of the ONT reaches the OLT",
             [](const auto&, const auto& ont) { return ont.situation->has_power && ont.situation->is_cut; }},
    OntAlarm{"SUFi", "start-up failure: the ONT is outside the reach of its port, and ranging fails",
             [](const auto&, const auto& ont) {
                 return is_heard(ont) && ont.situation->configured && !ont.situation->is_in_reach;
             }},
    OntAlarm{"SFi", "signal fail: of 10^5 bits upstream one or more is wrong",
             [](const auto& plant, const auto& ont) { return is_heard(ont) && wrong_bits(plant, ont) >= signal_fail; }},
    OntAlarm{"SDi", "signal degrade: of 10^7 bits upstream one or more is wrong, but no signal fail",
             [](const auto& plant, const auto& ont) {
                 const auto wrong = is_heard(ont) ? wrong_bits(plant, ont) : 0;
                 return wrong >= signal_degrade && wrong < signal_fail;
             }},
    OntAlarm{"DOWi", "drift of window: the ONT answers at another time than it should",
             [](const auto& plant, const auto& ont) { return has_fault(plant, ont, FaultKind::ont_drift); }},
    OntAlarm{"TIWi", "transmission interference: the ONT sends in the time of others",
             [](const auto& plant, const auto& ont) { return has_fault(plant, ont, FaultKind::ont_rogue); }},
    OntAlarm{"LOAMi", "loss of the OMCI channel",
             [](const auto& plant, const auto& ont) {
                 return has_fault(plant, ont, FaultKind::ont_omci) || has_fault(plant, ont, FaultKind::ont_omci_lost);
             }},
    OntAlarm{"LOKi", "loss of key: the ONT's key for encryption is not the OLT's",
             [](const auto& plant, const auto& ont) { return has_fault(plant, ont, FaultKind::ont_key); }},
};

} // namespace

std::span<const OntAlarm> ont_alarms() {
    return alarms;
}

std::uint32_t alarms_of(const Plant& plant, const Plant::Ont& ont) {
    std::uint32_t raised = 0;
    for (std::size_t nth = 0; nth < alarms.size(); ++nth) {
        raised |= std::uint32_t{alarms.at(nth).is_raised(plant, ont)} << nth;
    }
    return raised;
}

} // namespace xpon::simulator
