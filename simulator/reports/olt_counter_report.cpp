#include "simulator/reports/counter_report.hpp"
#include "simulator/reports/ont_counts.hpp"

namespace xpon::simulator {
namespace {

std::uint64_t whole(double number) {
    return static_cast<std::uint64_t>(number);
}

/// The management channel, each message 48 octets behind a GEM header [G.988 11.2].
struct Omci {
    static constexpr unsigned octets = 53;

    std::uint64_t messages; ///< each way

    explicit Omci(const OntTally& tally) {
        // The MIB upload and what every service needs, then audits and the reading of counters.
        constexpr unsigned per_upload = 74;
        constexpr unsigned per_service = 12;
        constexpr unsigned per_reading = 14;
        constexpr unsigned audit_s = 300;
        messages = tally.provisionings * per_upload + tally.provided_services * per_service +
                   whole(tally.seconds / audit_s) + whole(tally.seconds / OntCounts::Interval::seconds) * per_reading;
    }
};

/// What the OLT has counted of the ONT that is configured with a flat index; empty when that is not to be told, or
/// nothing.
struct OltCounts {
    Plant::Ont ont;
    OntTally tally;

    static std::optional<OltCounts> of(const Plant& plant, std::uint16_t index) {
        const auto ont = plant.ont_configured_as(index);
        if (!ont || !ont->settings->pm_collection) {
            return std::nullopt;
        }
        const auto tally = plant.counted(*ont);
        return tally ? std::optional(OltCounts{*ont, *tally}) : std::nullopt;
    }
};

} // namespace

Ont__get_gem_port_counters_response report_olt_gem_ports(const Plant& plant, std::uint16_t index) {
    constexpr std::uint16_t multicast_port = 4094;
    constexpr std::uint16_t broadcast_port = 4095;
    auto record = Ont__get_gem_port_counters_response();
    const auto counts = OltCounts::of(plant, index);
    if (!counts) {
        return record;
    }
    const auto& tally = counts->tally;
    const auto add = [&](std::uint16_t port, Gem_port_group group, const LinkTraffic& rx, const LinkTraffic& tx) {
        auto& entry = record.entries[record.count++];
        entry.gem_port = port;
        entry.group = group;
        entry.rx_bytes = rx.octets;
        entry.rx_packets = rx.packets;
        entry.tx_bytes = tx.octets;
        entry.tx_packets = tx.packets;
    };
    LinkTraffic streams;
    for (const auto& service : counts->ont.settings->services) {
        const auto& flows = tally.service(service.number);
        LinkTraffic rx;
        LinkTraffic tx;
        rx.add(flows.up.frames_received());
        tx.add(flows.down.frames_sent());
        add(gem_port_of(index, service.number), gem_port_unicast, rx, tx);
        streams.add(flows.multicast.frames_sent());
    }
    if (has_multicast(*counts->ont.settings)) {
        add(multicast_port, gem_port_multicast, {}, streams);
    }
    if (has_broadcast(*counts->ont.settings)) {
        LinkTraffic announcements;
        announcements.add(tally.broadcast.frames_sent());
        add(broadcast_port, gem_port_broadcast, {}, announcements);
    }
    return record;
}

Ont__get_pon_counters_response report_olt_pon(const Plant& plant, std::uint16_t index) {
    auto record = Ont__get_pon_counters_response();
    const auto counts = OltCounts::of(plant, index);
    if (!counts) {
        return record;
    }
    const auto& tally = counts->tally;
    const auto& place = counts->ont.hardware->position;
    const auto drifts = [&](std::uint64_t direction) {
        // The fibre warms up and cools down, and the ONT is told to send a bit earlier or later.
        constexpr double hour_s = 3600;
        const double hours = plant.random().between(1, 6, Purpose::ranging_drift, {place.port, place.ont, direction});
        return whole(tally.seconds / (hours * hour_s));
    };
    const auto& fec = tally.fec_up;
    const Omci omci(tally);
    const auto rx = tally.received();
    const auto tx = tally.sent();
    // Parts of the line that are neither payload nor its check sums: small shares of the wrong bits fall there.
    constexpr double delimiter_share = 2e-5;
    constexpr double ploam_share = 1e-4;
    constexpr double omci_share = 2e-4;
    const auto symbols = whole(fec.corrected) + whole(fec.extra_bytes);
    record.drift_positive = drifts(0);
    record.drift_negative = drifts(1);
    record.delimiter_miss_detection = whole(tally.wrong_bits_up * delimiter_share);
    record.bip_errors = whole(tally.wrong_bits_up);
    record.bip_units = whole(tally.granted_octets);
    record.fec_corrected_symbols = symbols;
    record.fec_codewords_uncorrected = whole(fec.uncorrectable);
    record.fec_codewords_corrected = whole(fec.corrected);
    record.fec_codewords = whole(fec.words);
    record.fec_corrected_units = symbols + whole(fec.corrected / 20); // bits; seldom two in one symbol
    record.rx_ploams_errors = whole(tally.wrong_bits_up * ploam_share);
    // Activation, a new key every hour, acknowledgements of the GEM ports' encryption.
    record.rx_ploams_non_idle = 6 + tally.provided_services + whole(tally.seconds / 3600) * 3;
    record.rx_omci = omci.messages;
    record.rx_omci_packets_crc_error = whole(tally.wrong_bits_up * omci_share);
    record.rx_bytes = rx.octets + omci.messages * Omci::octets;
    record.rx_packets = rx.packets + omci.messages;
    record.tx_bytes = tx.octets + omci.messages * Omci::octets;
    record.tx_packets = tx.packets + omci.messages;
    record.ber_reported = whole(tally.wrong_bits_down); // remote error indications of the ONT
    return record;
}

} // namespace xpon::simulator
