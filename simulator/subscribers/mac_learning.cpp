#include "simulator/subscribers/mac_learning.hpp"

namespace xpon::simulator {
namespace {

using namespace std::chrono_literals;

constexpr PlantTime aging_time = 300s;

/// When a host talked last, of its own accord: some talk all the time, others have hours of silence, again and again.
PlantTime last_talk(const Plant& plant, const SubscriberLine& line, unsigned host) {
    const auto share = [&](unsigned which) { return line.hosts.share(Purpose::host_idleness, host, which); };
    const auto& service = *line.service;
    // Sessions and memberships are kept up by messages every minute or two.
    const bool is_kept_up = host == 0 && (service.pppoe_agent || service.multicast_vid != 0);
    if (is_kept_up || share(0) >= plant.parameters().plant->subscribers.silent_hosts) {
        return plant.now();
    }
    const auto part_of = [](PlantTime time, double part) {
        return PlantTime(static_cast<PlantTime::rep>(static_cast<double>(time.count()) * part));
    };
    const auto cycle = 40min + part_of(200min, share(1));
    const auto talks = part_of(cycle, 0.3 + 0.6 * share(2));
    const auto in_cycle = (plant.now() + part_of(cycle, share(3))) % cycle;
    return in_cycle < talks ? plant.now() : plant.now() - (in_cycle - talks);
}

} // namespace

bool MacLearning::is_known(const SubscriberLine& line, unsigned host) {
    if (!line.served || !may_talk(line, host)) {
        return false;
    }
    const auto is_fresh = [&](PlantTime heard) { return plant_.now() - heard < aging_time; };
    // Hosts announce themselves when the ONT lets them through, and talk when they renew their lease.
    if (is_fresh(line.served->since) || is_fresh(last_talk(plant_, line, host))) {
        return true;
    }
    const auto granted = leases_.last_grant(line, host);
    return granted && is_fresh(*granted);
}

bool MacLearning::may_talk(const SubscriberLine& line, unsigned host) {
    const auto& service = *line.service;
    if (!service.source_guard || (service.static_ip != 0 && host == 0) || leases_.last_grant(line, host)) {
        return true;
    }
    const auto session = sessions_.find(line);
    return session && session->id != 0;
}

} // namespace xpon::simulator
