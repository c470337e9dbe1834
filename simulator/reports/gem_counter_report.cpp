#include "simulator/reports/counter_report.hpp"
#include "simulator/reports/ont_counts.hpp"

#include <cmath>

namespace xpon::simulator {
namespace {

/// Keys of what happens by chance.
enum Chance : std::uint64_t { misinserted = 100, impaired, discarded };

/// What went through one GEM port in an interval.
struct GemPort {
    Frames up;
    Frames received;
    Frames lost;
};

GemPort difference(const FlowTally& before, const FlowTally& after) {
    GemPort port{.up = {}, .received = after.frames_received(), .lost = after.frames_lost()};
    port.received -= before.frames_received();
    port.lost -= before.frames_lost();
    return port;
}

/// The GEM ports that carry the same to all ONTs: only their downstream counts.
GemPort multicast_port(const OntCounts& counts, const OntCounts::Interval& interval) {
    GemPort sum{};
    for (const auto& service : counts.settings().services) {
        const auto port = difference(interval.before.service(service.number).multicast,
                                     interval.after.service(service.number).multicast);
        sum.received += port.received;
        sum.lost += port.lost;
    }
    return sum;
}

GemPort broadcast_port(const OntCounts::Interval& interval) {
    return difference(interval.before.broadcast, interval.after.broadcast);
}

GemPort unicast_port(const OntCounts::Interval& interval, unsigned service) {
    const auto& before = interval.before.service(service);
    const auto& after = interval.after.service(service);
    auto port = difference(before.down, after.down);
    port.up = after.up.frames_sent();
    port.up -= before.up.frames_sent();
    return port;
}

/// Blocks of 48 bytes that frames are counted in [G.988 ME 267]. Those transmitted are those that the far end sent.
std::uint64_t blocks(const Frames& frames) {
    constexpr unsigned block_octets = 48;
    std::uint64_t sum = 0;
    for (std::size_t bin = 0; bin < frame_sizes.size(); ++bin) {
        sum += frames.of_size.at(bin) * ((frame_sizes.at(bin) + block_octets - 1) / block_octets);
    }
    return sum;
}

/// Writes the record of a kind whose instances are the services and whose groups stand beside them.
/// `write_service(record, place, port)` writes an instance, `write_group(group, port, key)` a group.
template <class Record, class WriteService, class WriteGroup>
Record report(const Plant& plant, std::uint16_t index, WriteService write_service, WriteGroup write_group) {
    auto record = Record();
    const auto counts = OntCounts::of(plant, index);
    if (!counts) {
        return record;
    }
    const auto interval = counts->last_interval();
    for (const auto& service : counts->settings().services) {
        record.number[record.count] = service.number;
        write_service(record, record.count++, unicast_port(interval, service.number), *counts, interval);
    }
    const auto add_group = [&](auto& group, const GemPort& port, std::uint64_t key) {
        group.valid = 1;
        group.finished_intervals = interval_end_time(interval);
        write_group(group, port, key, *counts, interval);
    };
    if (has_multicast(counts->settings())) {
        add_group(record.mc, multicast_port(*counts, interval), max_counter_instances);
    }
    if (has_broadcast(counts->settings())) {
        add_group(record.bc, broadcast_port(interval), max_counter_instances + 1);
    }
    return record;
}

/// What ME 267 counts in one GEM port, beside what went through.
struct Losses {
    std::uint32_t lost;
    std::uint32_t misinserted;
    std::uint32_t impaired_blocks;

    Losses(const GemPort& port, std::uint64_t key, const OntCounts& counts, const OntCounts::Interval& interval)
        : lost(low_32(port.lost.packets())) {
        // Of the frames that are lost some turn up elsewhere, and some come in part.
        misinserted = low_32(counts.happened(lost * 0.3, interval, Chance::misinserted << 8U | key));
        impaired_blocks = low_32(counts.happened(lost * 2.5, interval, Chance::impaired << 8U | key));
    }
};

std::uint32_t discarded_frames(const GemPort& port, std::uint64_t key, const OntCounts& counts,
                               const OntCounts::Interval& interval) {
    constexpr double by_itself = 5e-7; // frames that the ONT has no place for
    const double expected =
        static_cast<double>(port.lost.packets()) * 0.5 + static_cast<double>(port.received.packets()) * by_itself;
    return low_32(counts.happened(expected, interval, discarded << 8U | key));
}

} // namespace

Ont_gem_port_pm report_gem_port_pm(const Plant& plant, std::uint16_t index) {
    return report<Ont_gem_port_pm>(
        plant, index,
        [](auto& record, unsigned place, const GemPort& port, const auto& counts, const auto& interval) {
            const Losses losses(port, place, counts, interval);
            record.finished_intervals[place] = interval_end_time(interval);
            record.lost_packets[place] = losses.lost;
            record.misinserted_packets[place] = losses.misinserted;
            record.received_packets[place] = low_32(port.received.packets());
            record.received_blocks[place] = low_32(blocks(port.received));
            record.transmitted_blocks[place] = low_32(blocks(port.received) + blocks(port.lost));
            record.impaired_blocks[place] = losses.impaired_blocks;
        },
        [](auto& group, const GemPort& port, std::uint64_t key, const auto& counts, const auto& interval) {
            const Losses losses(port, key, counts, interval);
            group.lost_packets = losses.lost;
            group.misinserted_packets = losses.misinserted;
            group.received_packets = low_32(port.received.packets());
            group.received_blocks = low_32(blocks(port.received));
            group.transmitted_blocks = low_32(blocks(port.received) + blocks(port.lost));
            group.impaired_blocks = losses.impaired_blocks;
        });
}

Ont_gem_port_nctp_pm report_gem_port_nctp_pm(const Plant& plant, std::uint16_t index) {
    return report<Ont_gem_port_nctp_pm>(
        plant, index,
        [](auto& record, unsigned place, const GemPort& port, const auto&, const auto& interval) {
            record.downstream.finished_intervals[place] = interval_end_time(interval);
            record.downstream.received_gem_frames[place] = low_32(port.received.packets());
            record.downstream.received_payload_bytes[place] = low_32(port.received.octets());
            record.upstream.finished_intervals[place] = interval_end_time(interval);
            record.upstream.transmitted_gem_frames[place] = low_32(port.up.packets());
            record.upstream.transmitted_payload_bytes[place] = low_32(port.up.octets());
        },
        [](auto& group, const GemPort& port, std::uint64_t, const auto&, const auto&) {
            group.received_gem_frames = low_32(port.received.packets());
            group.received_payload_bytes = low_32(port.received.octets());
        });
}

Ont_gal_eth_pm report_gal_eth_pm(const Plant& plant, std::uint16_t index) {
    return report<Ont_gal_eth_pm>(
        plant, index,
        [](auto& record, unsigned place, const GemPort& port, const auto& counts, const auto& interval) {
            record.finished_intervals[place] = interval_end_time(interval);
            record.discarded_frames[place] = discarded_frames(port, place, counts, interval);
        },
        [](auto& group, const GemPort& port, std::uint64_t key, const auto& counts, const auto& interval) {
            group.discarded_frames = discarded_frames(port, key, counts, interval);
        });
}

Ont_fec_pm_counters report_fec_pm(const Plant& plant, std::uint16_t index) {
    auto record = Ont_fec_pm_counters();
    const auto counts = OntCounts::of(plant, index);
    if (!counts) {
        return record;
    }
    const auto interval = counts->last_interval();
    const auto& before = interval.before.fec_down;
    const auto& after = interval.after.fec_down;
    const auto corrected = low_32(static_cast<std::uint64_t>(after.corrected - before.corrected));
    const double damaged_per_s = (after.corrected - before.corrected + after.uncorrectable - before.uncorrectable) /
                                 OntCounts::Interval::seconds;
    record.count = 1;
    record.finished_intervals[0] = interval_end_time(interval);
    record.corrected_bytes[0] = corrected + low_32(static_cast<std::uint64_t>(after.extra_bytes - before.extra_bytes));
    record.corrected_code_words[0] = corrected;
    record.uncorrectable_code_words[0] =
        low_32(static_cast<std::uint64_t>(after.uncorrectable) - static_cast<std::uint64_t>(before.uncorrectable));
    // The ONT measures its intervals by a clock of its own.
    constexpr double inaccuracy = 2e-5;
    const double clock = plant.random().between(1 - inaccuracy, 1 + inaccuracy, Purpose::ont_clock,
                                                {counts->hardware().position.port, counts->hardware().position.ont});
    record.total_code_words[0] = low_32(static_cast<std::uint64_t>((after.words - before.words) * clock));
    // Seconds with a wrong word in them.
    record.fec_seconds[0] =
        low_32(static_cast<std::uint64_t>(OntCounts::Interval::seconds * -std::expm1(-damaged_per_s)));
    return record;
}

} // namespace xpon::simulator
