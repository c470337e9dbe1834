#include "exporter/json_values.hpp"
#include "exporter/readings.hpp"
#include "xpon/client/serial_number.hpp"

#include <algorithm>
#include <array>
#include <cctype>
#include <string_view>

namespace xpon::exporter {
namespace {

// The texts that the OLT uses, by the number that stands for each; the last one has no text of its own.
constexpr std::array<std::string_view, 16> states{"UNKNOWN",        "INITIAL",        "STANDBY",       "SERIAL_NUMBER",
                                                  "RANGING",        "AUTHENTICATION", "MIB_UPLOAD",    "CONFIGURING",
                                                  "OPERATIONAL",    "AUTH_FAILED",    "CONFIG_FAILED", "POPUP",
                                                  "EMERGENCY_STOP", "DISABLED",       "UNACTIVATED",   "ABSENT"};
constexpr double unknown_state = 255;

struct CounterField {
    const char* label;
    Metric metric;
};
constexpr std::array pon_fields{
    CounterField{"Rx Bytes", Metric::ont_received_bytes},
    CounterField{"Rx Packets", Metric::ont_received_packets},
    CounterField{"Tx Bytes", Metric::ont_transmitted_bytes},
    CounterField{"Tx Packets", Metric::ont_transmitted_packets},
    CounterField{"BIP Units", Metric::ont_bip_units},
    CounterField{"BIP Errors", Metric::ont_bip_errors},
    CounterField{"FEC Codewords", Metric::ont_fec_codewords},
    CounterField{"FEC Codewords Corrected", Metric::ont_fec_corrected},
    CounterField{"FEC Codewords Uncorrected", Metric::ont_fec_uncorrectable},
    CounterField{"Delimiter Miss Detection", Metric::ont_delimiter_misses},
    CounterField{"Rx PLOAMs Errors", Metric::ont_ploam_errors},
    CounterField{"Rx OMCI Packets CRC Error", Metric::ont_omci_crc_errors},
};
constexpr std::array fec_fields{
    CounterField{"Corrected code words", Metric::ont_interval_fec_corrected},
    CounterField{"Uncorrectable code words", Metric::ont_interval_fec_uncorrectable},
};
constexpr std::array gem_fields{CounterField{"Lost packets", Metric::ont_interval_lost_packets}};

std::string lower_case(std::string_view text) {
    std::string lower(text);
    std::ranges::transform(lower, lower.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return lower;
}

/// Counters that the OLT keeps. An ONT that is told not to collect has 0 in all of them, which would look healthy.
void read_pon(const cJSON* counters, Samples::Labels labels, Samples& samples) {
    if (std::ranges::all_of(pon_fields, [&](const auto& field) { return number(counters, field.label) == 0; })) {
        return;
    }
    for (const auto& [label, metric] : pon_fields) {
        if (const auto value = number(counters, label)) {
            samples.add(metric, *value, labels);
        }
    }
}

/// Counters that the ONT keeps for each part of itself (`groups`), summed over the parts.
template <std::size_t Count>
void read_sums(const cJSON* groups, const std::array<CounterField, Count>& fields, Samples::Labels labels,
               Samples& samples) {
    for (const auto& [label, metric] : fields) {
        std::optional<double> sum;
        const cJSON* group = nullptr;
        cJSON_ArrayForEach(group, groups) {
            if (const auto value = number(group, label)) {
                sum = sum.value_or(0) + *value;
            }
        }
        if (sum) {
            samples.add(metric, *sum, labels);
        }
    }
}

} // namespace

std::vector<Ont> read_ont_states(const cJSON* data, int port, Samples& samples) {
    std::vector<Ont> operational;
    std::map<std::string, double> by_state;
    double unclaimed = 0;
    const cJSON* row = nullptr;
    cJSON_ArrayForEach(row, data) {
        const auto ont = number(row, "cfg_ont_id");
        if (!ont) {
            unclaimed += number(row, "port") == port ? 1 : 0;
            continue;
        }
        const auto text_of_state = text(row, "state");
        const std::string state = text_of_state.empty() ? "ABSENT" : text_of_state;
        const auto* known = std::ranges::find(states, state);
        const bool is_operational = state == "OPERATIONAL";
        const auto labels = samples.labels(
            {std::to_string(port), std::to_string(static_cast<int>(*ont)), client::serial_text(member(row, "serial"))});
        ++by_state[known == states.end() ? "unknown" : lower_case(state)];
        samples.add(Metric::ont_up, is_operational ? 1 : 0, labels);
        samples.add(Metric::ont_state,
                    known == states.end() ? unknown_state : static_cast<double>(known - states.begin()), labels);
        if (!is_operational) {
            continue;
        }
        const auto* info = member(row, "ont_info");
        if (const auto power = number(info, "rssi")) {
            samples.add(Metric::ont_received_power, *power, labels);
        }
        if (const auto meters = number(info, "distance")) {
            samples.add(Metric::ont_distance, *meters, labels);
        }
        operational.push_back({static_cast<int>(*ont), labels});
    }
    for (const auto state : states) {
        const auto name = lower_case(state);
        samples.add(Metric::pon_onts, by_state[name], samples.labels({std::to_string(port), name}));
    }
    samples.add(Metric::pon_unclaimed_onts, unclaimed, samples.labels({std::to_string(port)}));
    return operational;
}

void read_ont_counters(const cJSON* data, CounterKind kind, const std::vector<Ont>& onts, Samples& samples) {
    const cJSON* counters = data == nullptr ? nullptr : data->child;
    for (const auto& ont : onts) {
        if (counters == nullptr) {
            return;
        }
        switch (kind) {
        case CounterKind::pon:
            read_pon(counters, ont.labels, samples);
            break;
        case CounterKind::fec_interval:
            read_sums(counters, fec_fields, ont.labels, samples);
            break;
        case CounterKind::gem_interval:
            read_sums(counters, gem_fields, ont.labels, samples);
            break;
        }
        counters = counters->next;
    }
}

} // namespace xpon::exporter
