#pragma once

#include "xpon/custom_layer/onts.h"

#include <cstddef>
#include <cstdint>

// Performance counters of ONTs: those that an ONT keeps itself, read over OMCI [G.988], and those that the OLT keeps
// of it [TR-385].
//
// ONT-side values are those of the last 15-minute interval that has finished, 0 before the first has; 64-bit
// attributes are cut to their low 32 bits. `finished_intervals` is the interval end time [G.988], 0 to 255, which
// wraps. OLT-side values count from the start of the ONT's activation.

/// Which counters; the record that each gives.
enum Ont_information_kind : std::uint8_t {
    ont_information_gem_port_pm = 1,           ///< Ont_gem_port_pm
    ont_information_gem_port_nctp_pm = 2,      ///< Ont_gem_port_nctp_pm
    ont_information_eth_pm_history_data = 3,   ///< Ont_eth_pm_history_data
    ont_information_ethernet_pm_2 = 4,         ///< Ont_ethernet_pm_2
    ont_information_eth_pm_history_data_3 = 5, ///< Ont_eth_pm_history_data_3
    ont_information_gal_eth_pm = 6,            ///< Ont_gal_eth_pm
    ont_information_fec_pm = 7,                ///< Ont_fec_pm_counters
    ont_information_eth_frame_ext_pm = 8,      ///< Ont_eth_frame_ext_pm
    ont_information_olt_gem_port = 9,          ///< Ont__get_gem_port_counters_response
    ont_information_olt_pon = 10,              ///< Ont__get_pon_counters_response
};

inline constexpr std::size_t max_counter_instances = 24;

/// One value per instance; those from the record's `count` on mean nothing.
using Ont_instance_values = std::uint32_t[max_counter_instances];

/// GEM port performance monitoring [G.988 ME 267]: instances are the ONT's services.
struct Ont_gem_port_pm {
    /// Of the multicast or the broadcast GEM port.
    struct Group {
        std::uint8_t valid; ///< 0: the ONT has none
        std::uint32_t finished_intervals;
        std::uint32_t lost_packets;
        std::uint32_t misinserted_packets;
        std::uint32_t received_packets;
        std::uint32_t received_blocks;
        std::uint32_t transmitted_blocks;
        std::uint32_t impaired_blocks;
    };

    std::uint8_t count;
    std::uint8_t number[max_counter_instances]; ///< of the service, from 1
    Ont_instance_values finished_intervals;
    Ont_instance_values lost_packets;
    Ont_instance_values misinserted_packets;
    Ont_instance_values received_packets;
    Ont_instance_values received_blocks;
    Ont_instance_values transmitted_blocks;
    Ont_instance_values impaired_blocks;
    Group mc;
    Group bc;
};

/// GEM port network CTP performance monitoring [G.988 ME 341]: instances are the ONT's services.
struct Ont_gem_port_nctp_pm {
    struct Downstream {
        Ont_instance_values finished_intervals;
        Ont_instance_values received_gem_frames;
        Ont_instance_values received_payload_bytes;
    };
    struct Upstream {
        Ont_instance_values finished_intervals;
        Ont_instance_values transmitted_gem_frames;
        Ont_instance_values transmitted_payload_bytes;
    };
    /// Of the multicast or the broadcast GEM port, which carry downstream frames only.
    struct Group {
        std::uint8_t valid; ///< 0: the ONT has none
        std::uint32_t finished_intervals;
        std::uint32_t received_gem_frames;
        std::uint32_t received_payload_bytes;
    };

    std::uint8_t count;
    std::uint8_t number[max_counter_instances]; ///< of the service, from 1
    Downstream downstream;
    Upstream upstream;
    Group mc;
    Group bc;
};

/// Ethernet performance monitoring history data [G.988 ME 24]: instances are the ONT's Ethernet ports, from 1.
struct Ont_eth_pm_history_data {
    std::uint8_t count;
    Ont_instance_values finished_intervals;
    Ont_instance_values fcs_errors;
    Ont_instance_values excessive_collision;
    Ont_instance_values late_collision;
    Ont_instance_values frames_too_long;
    Ont_instance_values buffer_overflows_on_receive;
    Ont_instance_values buffer_overflows_on_transmit;
    Ont_instance_values single_collision;
    Ont_instance_values multiple_collisions;
    Ont_instance_values sqe;
    Ont_instance_values deferred_transmission;
    Ont_instance_values internal_mac_transmit_error;
    Ont_instance_values carrier_sense_error;
    Ont_instance_values alignment_error;
    Ont_instance_values internal_mac_receive_error;
};

/// Ethernet performance monitoring history data 2 [G.988 ME 89]: instances are the ONT's Ethernet ports, from 1.
struct Ont_ethernet_pm_2 {
    std::uint8_t count;
    Ont_instance_values finished_intervals;
    Ont_instance_values pppoe_filtered_frame_counters;
};

/// Ethernet performance monitoring history data 3 [G.988 ME 296]: instances are the ONT's Ethernet ports, from 1.
struct Ont_eth_pm_history_data_3 {
    std::uint8_t count;
    Ont_instance_values finished_intervals;
    Ont_instance_values drop_events;
    Ont_instance_values octets;
    Ont_instance_values packets;
    Ont_instance_values broadcast_packets;
    Ont_instance_values multicast_packets;
    Ont_instance_values undersize_packets;
    Ont_instance_values fragments;
    Ont_instance_values jabbers;
    Ont_instance_values packets_64_octets;
    Ont_instance_values packets_65_to_127_octets;
    Ont_instance_values packets_128_to_255_octets;
    Ont_instance_values packets_256_to_511_octets;
    Ont_instance_values packets_512_to_1023_octets;
    Ont_instance_values packets_1024_to_1518_octets;
};

/// GAL Ethernet performance monitoring [G.988 ME 276]: instances are the ONT's services.
struct Ont_gal_eth_pm {
    /// Of the multicast or the broadcast GEM port.
    struct Group {
        std::uint8_t valid; ///< 0: the ONT has none
        std::uint32_t finished_intervals;
        std::uint32_t discarded_frames;
    };

    std::uint8_t count;
    std::uint8_t number[max_counter_instances]; ///< of the service, from 1
    Ont_instance_values finished_intervals;
    Ont_instance_values discarded_frames;
    Group mc;
    Group bc;
};

/// FEC performance monitoring [G.988 ME 312]: the one instance is the ONT's PON interface.
struct Ont_fec_pm_counters {
    std::uint8_t count;
    Ont_instance_values finished_intervals;
    Ont_instance_values corrected_bytes;
    Ont_instance_values corrected_code_words;
    Ont_instance_values uncorrectable_code_words;
    Ont_instance_values total_code_words;
    Ont_instance_values fec_seconds;
};

/// Ethernet frame extended performance monitoring [G.988 ME 334]: instances are the ONT's Ethernet ports, from 1.
struct Ont_eth_frame_ext_pm {
    /// Of the virtual Ethernet interface point [G.988 ME 329].
    struct Veip {
        std::uint8_t valid; ///< 0: the ONT has none
        std::uint32_t finished_intervals;
        std::uint32_t drop_events;
        std::uint32_t octets;
        std::uint32_t frames;
        std::uint32_t broadcast_frames;
        std::uint32_t multicast_frames;
        std::uint32_t crc_errored_frames;
        std::uint32_t undersize_frames;
        std::uint32_t oversize_frames;
        std::uint32_t frames_64_octets;
        std::uint32_t frames_65_to_127_octets;
        std::uint32_t frames_128_to_255_octets;
        std::uint32_t frames_256_to_511_octets;
        std::uint32_t frames_512_to_1023_octets;
        std::uint32_t frames_1024_to_1518_octets;
    };
    struct Direction {
        Ont_instance_values finished_intervals;
        Ont_instance_values drop_events;
        Ont_instance_values octets;
        Ont_instance_values frames;
        Ont_instance_values broadcast_frames;
        Ont_instance_values multicast_frames;
        Ont_instance_values crc_errored_frames;
        Ont_instance_values undersize_frames;
        Ont_instance_values oversize_frames;
        Ont_instance_values frames_64_octets;
        Ont_instance_values frames_65_to_127_octets;
        Ont_instance_values frames_128_to_255_octets;
        Ont_instance_values frames_256_to_511_octets;
        Ont_instance_values frames_512_to_1023_octets;
        Ont_instance_values frames_1024_to_1518_octets;
        Veip veip;
    };

    std::uint8_t count;
    Direction upstream;
    Direction downstream;
};

/// Which GEM port of the ONT it is.
enum Gem_port_group : std::uint8_t { gem_port_unicast = 0, gem_port_multicast = 1, gem_port_broadcast = 2 };

/// What the OLT counts of one GEM port of the ONT. Rx is from the ONT.
struct Ont_gem_port_counters {
    std::uint16_t gem_port;
    Gem_port_group group;
    std::uint64_t rx_bytes;
    std::uint64_t rx_packets;
    std::uint64_t tx_bytes;
    std::uint64_t tx_packets;
};

/// One per service and one each for multicast and broadcast.
inline constexpr std::size_t max_gem_ports_per_ont = 10;

struct Ont__get_gem_port_counters_response {
    std::uint16_t count;
    Ont_gem_port_counters entries[max_gem_ports_per_ont];
};

/// What the OLT counts on the PON link of the ONT. Rx is from the ONT.
struct Ont__get_pon_counters_response {
    std::uint64_t drift_positive;
    std::uint64_t drift_negative;
    std::uint64_t delimiter_miss_detection;
    std::uint64_t bip_errors;
    std::uint64_t bip_units;
    std::uint64_t fec_corrected_symbols;
    std::uint64_t fec_codewords_uncorrected;
    std::uint64_t fec_codewords_corrected;
    std::uint64_t fec_codewords;
    std::uint64_t fec_corrected_units;
    std::uint64_t rx_ploams_errors;
    std::uint64_t rx_ploams_non_idle;
    std::uint64_t rx_omci;
    std::uint64_t rx_omci_packets_crc_error;
    std::uint64_t rx_bytes;
    std::uint64_t rx_packets;
    std::uint64_t tx_bytes;
    std::uint64_t tx_packets;
    std::uint64_t ber_reported;
};

extern "C" {

/// The record of `kind` (see there) of one ONT, numbers from 1, asked from the PON state machine. An ONT that is not
/// configured, not operational or not to collect counters gives a record whose counts are 0, and zero counters on its
/// PON link. errno ERANGE for a port or ONT that there cannot be, EINVAL for no such kind.
int custom_layer__get_ont_information_by_index(Ipc* ipc, Ont_information_kind kind, std::uint8_t port,
                                               std::uint16_t ont, void** out);

} // extern "C"
