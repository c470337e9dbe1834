#pragma once

#include "exporter/samples.hpp"
#include "xpon/core/json_tree.hpp"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace xpon::exporter {

/// From the data of an answer to samples. Values that an answer does not hold give no samples.

void read_system(const cJSON* data, Samples& samples);
void read_front_ports(const cJSON* data, Samples& samples);
void read_pon_ports(const cJSON* data, Samples& samples);

/// An ONT of one PON port that is in operation, and so has counters.
struct Ont {
    int number; ///< on its port, from 1
    Samples::Labels labels;
};
/// The configured ONTs of one PON port. Gives those in operation, ascending.
std::vector<Ont> read_ont_states(const cJSON* data, int port, Samples& samples);

/// Counters that the OLT keeps of an ONT, and those that the ONT keeps by quarters of an hour.
enum class CounterKind { pon, fec_interval, gem_interval };
/// `data` has an object for each of `onts`.
void read_ont_counters(const cJSON* data, CounterKind kind, const std::vector<Ont>& onts, Samples& samples);

/// Whole-plant tables, counted by PON port. Ports without any count 0.
using PortNumbers = std::vector<int>;
void read_leases(const cJSON* data, const PortNumbers& ports, Samples& samples);
void read_sessions(const cJSON* data, const PortNumbers& ports, Samples& samples);
void read_groups(const cJSON* data, const PortNumbers& ports, Samples& samples);
/// The addresses behind one port.
void read_mac_addresses(const cJSON* data, int port, Samples& samples);

} // namespace xpon::exporter
