#include "exporter/collection.hpp"

#include "exporter/json_values.hpp"
#include "exporter/process_readings.hpp"

#include <algorithm>
#include <cstdio>
#include <numeric>
#include <sstream>

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <poll.h>

namespace xpon::exporter {

using std::chrono::duration;
using std::chrono::steady_clock;

namespace {

const CollectorDescription& description_of(Collector collector) {
    return collectors.at(static_cast<std::size_t>(collector));
}

/// True when the program is to end.
bool wait_for_stop(int stop, std::chrono::milliseconds at_most) {
    pollfd entry{.fd = stop, .events = POLLIN, .revents = 0};
    return poll(&entry, 1, static_cast<int>(at_most.count())) > 0;
}

std::string list_of(const std::vector<Ont>& onts) {
    std::string list;
    for (const auto& ont : onts) {
        list += fmt::format("{}{}", list.empty() ? "" : ",", ont.number);
    }
    return list;
}

} // namespace

Collection::Collection(CollectionSettings settings, Session& session, int stop)
    : settings_(std::move(settings)), session_(session), stop_(stop) {}

std::string Collection::collect() {
    const auto begin = steady_clock::now();
    deadline_ = begin + settings_.budget;
    has_answered_ = false;
    runs_.clear();
    for (const auto collector : settings_.collectors) {
        runs_[collector] = {};
    }
    Samples samples;
    // How many ports there are is no collector of its own: without an answer there are none to ask for.
    auto reply = session_.request({.path = "monitoring.constants", .method = "get"});
    tell_of_change("session", reply);
    constants_ = std::move(reply.data);
    if (reply.outcome == Outcome::success) {
        has_answered_ = true;
        const auto ports = settings_.pon_ports.empty() ? ports_of("PON_PORT_COUNT") : settings_.pon_ports;
        collect_whole_tables(ports, samples);
        for (const auto port : ports) {
            collect_port(port, samples);
        }
    } else {
        for (auto& [collector, run] : runs_) {
            run.is_complete = false;
            ++requests_[{collector, reply.outcome}];
        }
    }
    report(samples, steady_clock::now() - begin);
    std::ostringstream text;
    samples.write(text);
    return std::move(text).str();
}

PortNumbers Collection::ports_of(const char* count) {
    PortNumbers ports(static_cast<std::size_t>(number(constants_.get(), count).value_or(0)));
    std::iota(ports.begin(), ports.end(), 1);
    return ports;
}

void Collection::collect_whole_tables(const PortNumbers& ports, Samples& samples) {
    if (const auto data = ask(Collector::system)) {
        read_system(data.get(), samples);
    }
    if (const auto front_ports = ports_of("FRONT_PORT_COUNT"); !front_ports.empty()) {
        if (const auto data = ask(Collector::front_ports, {fmt::format("{}", fmt::join(front_ports, ","))})) {
            read_front_ports(data.get(), samples);
        }
    }
    if (ports.empty()) {
        return;
    }
    if (const auto data = ask(Collector::pon_ports, {fmt::format("{}", fmt::join(ports, ","))})) {
        read_pon_ports(data.get(), samples);
    }
    if (const auto data = ask(Collector::dhcp)) {
        read_leases(data.get(), ports, samples);
    }
    if (const auto data = ask(Collector::pppoe)) {
        read_sessions(data.get(), ports, samples);
    }
    if (const auto data = ask(Collector::igmp)) {
        read_groups(data.get(), ports, samples);
    }
}

void Collection::collect_port(int port, Samples& samples) {
    const auto number_of_port = std::to_string(port);
    if (const auto data = ask(Collector::mac, {number_of_port})) {
        read_mac_addresses(data.get(), port, samples);
    }
    const auto states = ask(Collector::ont_state, {number_of_port, "1-256"});
    if (!states) {
        // Whose counters there are to ask for is not known.
        for (const auto collector :
             {Collector::ont_counters, Collector::ont_fec_interval, Collector::ont_gem_interval}) {
            if (wants(collector)) {
                runs_[collector].is_complete = false;
            }
        }
        return;
    }
    const auto onts = read_ont_states(states.get(), port, samples);
    if (onts.empty()) {
        return;
    }
    for (const auto& [collector, kind] : {std::pair(Collector::ont_counters, CounterKind::pon),
                                          std::pair(Collector::ont_fec_interval, CounterKind::fec_interval),
                                          std::pair(Collector::ont_gem_interval, CounterKind::gem_interval)}) {
        if (const auto data = ask(collector, {number_of_port, list_of(onts)})) {
            read_ont_counters(data.get(), kind, onts, samples);
        }
    }
}

core::JsonTree Collection::ask(Collector collector, std::vector<std::string> indices) {
    if (!wants(collector)) {
        return nullptr;
    }
    auto& run = runs_[collector];
    Reply reply{.outcome = Outcome::skipped, .reason = "the collection took too long"};
    if (!wait_for_stop(stop_, settings_.pause) && steady_clock::now() < deadline_) {
        reply = timed_request(
            run, {.path = std::string(description_of(collector).path), .method = "get", .indices = std::move(indices)});
    }
    ++requests_[{collector, reply.outcome}];
    run.is_complete = run.is_complete && reply.outcome == Outcome::success;
    tell_of_change(description_of(collector).name, reply);
    return std::move(reply.data);
}

Reply Collection::timed_request(Run& run, const client::Request& request) {
    const auto begin = steady_clock::now();
    auto reply = session_.request(request);
    const double took = duration<double>(steady_clock::now() - begin).count();
    run.duration += took;
    run.longest = std::max(run.longest, took);
    return reply;
}

void Collection::tell_of_change(std::string_view who, const Reply& reply) {
    auto& complaint = complaints_[who];
    if (complaint == reply.reason) {
        return;
    }
    fmt::print(stderr, "olt_exporter: {}: {}\n", who, reply.reason.empty() ? "works again" : reply.reason);
    complaint = reply.reason;
}

void Collection::report(Samples& samples, steady_clock::duration took) const {
    samples.add(Metric::up, has_answered_ ? 1 : 0);
    for (const auto& [collector, run] : runs_) {
        const auto labels = samples.labels({std::string(description_of(collector).name)});
        samples.add(Metric::collector_success, run.is_complete ? 1 : 0, labels);
        samples.add(Metric::collector_duration, run.duration, labels);
        samples.add(Metric::collector_longest_request, run.longest, labels);
    }
    for (const auto& [key, count] : requests_) {
        samples.add(Metric::requests, static_cast<double>(count),
                    samples.labels({std::string(description_of(key.first).name), std::string(to_string(key.second))}));
    }
    for (const auto outcome : {Outcome::success, Outcome::refused, Outcome::timed_out, Outcome::unreachable}) {
        const auto counted = session_.logins().find(outcome);
        const auto count = counted == session_.logins().end() ? 0 : counted->second; // 0 is needed to see the first
        samples.add(Metric::logins, static_cast<double>(count), samples.labels({std::string(to_string(outcome))}));
    }
    samples.add(Metric::collection_duration, duration<double>(took).count());
    samples.add(Metric::collection_time, duration<double>(std::chrono::system_clock::now().time_since_epoch()).count());
    read_process(samples);
}

} // namespace xpon::exporter
