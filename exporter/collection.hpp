#pragma once

#include "exporter/readings.hpp"
#include "exporter/samples.hpp"
#include "exporter/session.hpp"

#include <array>
#include <chrono>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace xpon::exporter {

/// What can be collected, in the order in which it is: what costs the OLT least and tells most comes first.
enum class Collector {
    system,
    front_ports,
    pon_ports,
    dhcp,
    pppoe,
    igmp,
    mac,
    ont_state,
    ont_counters,
    ont_fec_interval,
    ont_gem_interval,
};

struct CollectorDescription {
    Collector collector;
    std::string_view name;
    std::string_view path;
    bool is_default;
};
inline constexpr std::array collectors{
    CollectorDescription{Collector::system, "system", "monitoring.system", true},
    CollectorDescription{Collector::front_ports, "front_ports", "monitoring.interface.front_port.state", true},
    CollectorDescription{Collector::pon_ports, "pon_ports", "monitoring.interface.pon_port.state", true},
    CollectorDescription{Collector::dhcp, "dhcp", "monitoring.ip.dhcp.sessions", true},
    CollectorDescription{Collector::pppoe, "pppoe", "monitoring.ip.pppoe.sessions", true},
    CollectorDescription{Collector::igmp, "igmp", "monitoring.ip.igmp.snooping.groups", true},
    CollectorDescription{Collector::mac, "mac", "monitoring.mac", true},
    CollectorDescription{Collector::ont_state, "ont_state", "monitoring.interface.ont.state", true},
    CollectorDescription{Collector::ont_counters, "ont_counters", "monitoring.interface.ont.counters.olt_side.pon",
                         true},
    CollectorDescription{Collector::ont_fec_interval, "ont_fec_interval",
                         "monitoring.interface.ont.counters.ont_side.fec_performance_monitoring_history_data", false},
    CollectorDescription{Collector::ont_gem_interval, "ont_gem_interval",
                         "monitoring.interface.ont.counters.ont_side.gem_port_performance_monitoring", false},
};

struct CollectionSettings {
    std::set<Collector> collectors;
    PortNumbers pon_ports; ///< empty: all that the OLT has
    /// Between two requests, so that other clients of the OLT's one thread wait for one request at most.
    std::chrono::milliseconds pause;
    std::chrono::milliseconds budget; ///< for all of it; no request begins later
};

/// Makes collections, one at a time, and counts what became of their requests over all of them.
class Collection {
public:
    /// `stop`: a descriptor that becomes readable when the program is to end, which cuts a collection short.
    Collection(CollectionSettings settings, Session& session, int stop);

    /// The text that a scrape gets. Takes no longer than the budget and one request.
    std::string collect();

private:
    struct Run {
        double duration = 0; // seconds, of all requests
        double longest = 0;  // of one
        bool is_complete = true;
    };

    core::JsonTree ask(Collector collector, std::vector<std::string> indices = {});
    Reply timed_request(Run& run, const client::Request& request);
    void collect_whole_tables(const PortNumbers& ports, Samples& samples);
    void collect_port(int port, Samples& samples);
    PortNumbers ports_of(const char* count);
    void report(Samples& samples, std::chrono::steady_clock::duration took) const;
    /// Says on standard error what `who` fails of, once, and when that is over.
    void tell_of_change(std::string_view who, const Reply& reply);
    [[nodiscard]] bool wants(Collector collector) const {
        return settings_.collectors.contains(collector);
    }

    CollectionSettings settings_;
    Session& session_;
    int stop_;
    std::chrono::steady_clock::time_point deadline_;
    core::JsonTree constants_;
    std::map<Collector, Run> runs_;
    std::map<std::pair<Collector, Outcome>, std::uint64_t> requests_;
    std::map<std::string_view, std::string> complaints_; // what was said last
    bool has_answered_ = false;
};

} // namespace xpon::exporter
