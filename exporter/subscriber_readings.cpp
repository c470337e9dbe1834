#include "exporter/json_values.hpp"
#include "exporter/readings.hpp"

namespace xpon::exporter {
namespace {

/// How many of the items belong to each of the ports.
class Count {
public:
    explicit Count(const PortNumbers& ports) {
        for (const auto port : ports) {
            by_port_[port] = 0;
        }
    }
    void add(int port) {
        if (const auto known = by_port_.find(port); known != by_port_.end()) {
            ++known->second;
        }
    }
    void write(Metric metric, Samples& samples) const {
        for (const auto& [port, count] : by_port_) {
            samples.add(metric, count, samples.labels({std::to_string(port)}));
        }
    }

private:
    std::map<int, double> by_port_;
};

int pon_port_of(const cJSON* session) {
    return static_cast<int>(number(session, "pon_port_id").value_or(0));
}

} // namespace

void read_leases(const cJSON* data, const PortNumbers& ports, Samples& samples) {
    const auto* leases = member(data, "sessions");
    if (!cJSON_IsArray(leases)) {
        return;
    }
    Count count(ports);
    const cJSON* lease = nullptr;
    cJSON_ArrayForEach(lease, leases) {
        count.add(pon_port_of(lease));
    }
    count.write(Metric::pon_leases, samples);
}

void read_sessions(const cJSON* data, const PortNumbers& ports, Samples& samples) {
    const auto* sessions = member(data, "sessions");
    if (!cJSON_IsArray(sessions)) {
        return;
    }
    Count running(ports);
    Count blocked(ports);
    const cJSON* session = nullptr;
    cJSON_ArrayForEach(session, sessions) {
        if (number(session, "unblock_rest_sec").value_or(0) > 0) {
            blocked.add(pon_port_of(session));
        } else {
            running.add(pon_port_of(session));
        }
    }
    running.write(Metric::pon_sessions, samples);
    blocked.write(Metric::pon_blocked_sessions, samples);
}

void read_groups(const cJSON* data, const PortNumbers& ports, Samples& samples) {
    static const std::string pon_port = "pon-port 1/";
    const auto* groups = member(data, "igmp_groups");
    if (!cJSON_IsArray(groups)) {
        return;
    }
    Count count(ports);
    const cJSON* group = nullptr;
    cJSON_ArrayForEach(group, groups) {
        const cJSON* port = nullptr;
        cJSON_ArrayForEach(port, member(group, "ports")) {
            if (const auto name = text(port, "port"); name.starts_with(pon_port)) {
                count.add(std::atoi(name.c_str() + pon_port.size()));
            }
        }
    }
    count.write(Metric::pon_groups, samples);
}

void read_mac_addresses(const cJSON* data, int port, Samples& samples) {
    if (cJSON_IsArray(data)) {
        samples.add(Metric::pon_mac_addresses, cJSON_GetArraySize(data), samples.labels({std::to_string(port)}));
    }
}

} // namespace xpon::exporter
