#pragma once

#include "api_service/handlers/monitoring/counter_objects.hpp"

// The labels under which clients find the counters of each kind, in their order.

namespace xpon::api_service::counter_tables {

using GemPort = Ont_gem_port_pm;
using GemPortGroup = Ont_gem_port_pm::Group;
using NctpDownstream = Ont_gem_port_nctp_pm::Downstream;
using NctpUpstream = Ont_gem_port_nctp_pm::Upstream;
using NctpGroup = Ont_gem_port_nctp_pm::Group;
using Ethernet = Ont_eth_pm_history_data;
using Ethernet2 = Ont_ethernet_pm_2;
using Ethernet3 = Ont_eth_pm_history_data_3;
using GalEthernet = Ont_gal_eth_pm;
using GalEthernetGroup = Ont_gal_eth_pm::Group;
using Fec = Ont_fec_pm_counters;
using Frames = Ont_eth_frame_ext_pm::Direction;
using FramesOfVeip = Ont_eth_frame_ext_pm::Veip;
using OltGemPort = Ont_gem_port_counters;
using OltPon = Ont__get_pon_counters_response;

inline constexpr Counter<GemPort, GemPortGroup> gem_port[] = {
    {"Finished intervals", &GemPort::finished_intervals, &GemPortGroup::finished_intervals},
    {"Lost packets", &GemPort::lost_packets, &GemPortGroup::lost_packets},
    {"Misinserted packets", &GemPort::misinserted_packets, &GemPortGroup::misinserted_packets},
    {"Received packets", &GemPort::received_packets, &GemPortGroup::received_packets},
    {"Received blocks", &GemPort::received_blocks, &GemPortGroup::received_blocks},
    {"Transmitted blocks", &GemPort::transmitted_blocks, &GemPortGroup::transmitted_blocks},
    {"Impaired blocks", &GemPort::impaired_blocks, &GemPortGroup::impaired_blocks},
};

inline constexpr Counter<NctpDownstream, NctpGroup> nctp_downstream[] = {
    {"Finished intervals", &NctpDownstream::finished_intervals, &NctpGroup::finished_intervals},
    {"Received GEM frames", &NctpDownstream::received_gem_frames, &NctpGroup::received_gem_frames},
    {"Received payload bytes", &NctpDownstream::received_payload_bytes, &NctpGroup::received_payload_bytes},
};

inline constexpr Counter<NctpUpstream> nctp_upstream[] = {
    {"Finished intervals", &NctpUpstream::finished_intervals},
    {"Transmitted GEM frames", &NctpUpstream::transmitted_gem_frames},
    {"Transmitted payload bytes", &NctpUpstream::transmitted_payload_bytes},
};

inline constexpr Counter<Ethernet> ethernet[] = {
    {"Finished intervals", &Ethernet::finished_intervals},
    {"Fcs errors", &Ethernet::fcs_errors},
    {"Excessive collision", &Ethernet::excessive_collision},
    {"Late collision", &Ethernet::late_collision},
    {"Frames too long", &Ethernet::frames_too_long},
    {"Buffer overflows on receive", &Ethernet::buffer_overflows_on_receive},
    {"Buffer overflows on transmit", &Ethernet::buffer_overflows_on_transmit},
    {"Single collision", &Ethernet::single_collision},
    {"Multiple collisions", &Ethernet::multiple_collisions},
    {"Sqe", &Ethernet::sqe},
    {"Deferred transmission", &Ethernet::deferred_transmission},
    {"Internal mac transmit error", &Ethernet::internal_mac_transmit_error},
    {"Carrier sense error", &Ethernet::carrier_sense_error},
    {"Alignment error", &Ethernet::alignment_error},
    {"Internal mac receive error", &Ethernet::internal_mac_receive_error},
};

inline constexpr Counter<Ethernet2> ethernet_2[] = {
    {"Finished intervals", &Ethernet2::finished_intervals},
    {"PPPoE filtered frame counters", &Ethernet2::pppoe_filtered_frame_counters},
};

inline constexpr Counter<Ethernet3> ethernet_3[] = {
    {"Finished intervals", &Ethernet3::finished_intervals},
    {"Drop events", &Ethernet3::drop_events},
    {"Octets", &Ethernet3::octets},
    {"Packets", &Ethernet3::packets},
    {"Broadcast packets", &Ethernet3::broadcast_packets},
    {"Multicast packets", &Ethernet3::multicast_packets},
    {"Undersize packets", &Ethernet3::undersize_packets},
    {"Fragments", &Ethernet3::fragments},
    {"Jabbers", &Ethernet3::jabbers},
    {"Packets 64 octets", &Ethernet3::packets_64_octets},
    {"Packets 65 to 127 octets", &Ethernet3::packets_65_to_127_octets},
    {"Packets 128 to 255 octets", &Ethernet3::packets_128_to_255_octets},
    {"Packets 256 to 511 octets", &Ethernet3::packets_256_to_511_octets},
    {"Packets 512 to 1023 octets", &Ethernet3::packets_512_to_1023_octets},
    {"Packets 1024 to 1518 octets", &Ethernet3::packets_1024_to_1518_octets},
};

inline constexpr Counter<GalEthernet, GalEthernetGroup> gal_ethernet[] = {
    {"Finished intervals", &GalEthernet::finished_intervals, &GalEthernetGroup::finished_intervals},
    {"Discarded frames", &GalEthernet::discarded_frames, &GalEthernetGroup::discarded_frames},
};

inline constexpr Counter<Fec> fec[] = {
    {"Finished intervals", &Fec::finished_intervals},     {"Corrected bytes", &Fec::corrected_bytes},
    {"Corrected code words", &Fec::corrected_code_words}, {"Uncorrectable code words", &Fec::uncorrectable_code_words},
    {"Total code words", &Fec::total_code_words},         {"FEC seconds", &Fec::fec_seconds},
};

inline constexpr Counter<Frames, FramesOfVeip> frame_extended[] = {
    {"Finished intervals", &Frames::finished_intervals, &FramesOfVeip::finished_intervals},
    {"Drop events", &Frames::drop_events, &FramesOfVeip::drop_events},
    {"Octets", &Frames::octets, &FramesOfVeip::octets},
    {"Frames", &Frames::frames, &FramesOfVeip::frames},
    {"Broadcast frames", &Frames::broadcast_frames, &FramesOfVeip::broadcast_frames},
    {"Multicast frames", &Frames::multicast_frames, &FramesOfVeip::multicast_frames},
    {"CRC errored frames", &Frames::crc_errored_frames, &FramesOfVeip::crc_errored_frames},
    {"Undersize frames", &Frames::undersize_frames, &FramesOfVeip::undersize_frames},
    {"Oversize frames", &Frames::oversize_frames, &FramesOfVeip::oversize_frames},
    {"Frames 64 octets", &Frames::frames_64_octets, &FramesOfVeip::frames_64_octets},
    {"Frames 65 to 127 octets", &Frames::frames_65_to_127_octets, &FramesOfVeip::frames_65_to_127_octets},
    {"Frames 128 to 255 octets", &Frames::frames_128_to_255_octets, &FramesOfVeip::frames_128_to_255_octets},
    {"Frames 256 to 511 octets", &Frames::frames_256_to_511_octets, &FramesOfVeip::frames_256_to_511_octets},
    {"Frames 512 to 1023 octets", &Frames::frames_512_to_1023_octets, &FramesOfVeip::frames_512_to_1023_octets},
    {"Frames 1024 to 1518 octets", &Frames::frames_1024_to_1518_octets, &FramesOfVeip::frames_1024_to_1518_octets},
};

inline constexpr JsonField<OltGemPort> olt_gem_port[] = {
    {"Rx Bytes", member<&OltGemPort::rx_bytes>},
    {"Rx Packet", member<&OltGemPort::rx_packets>},
    {"Tx Bytes", member<&OltGemPort::tx_bytes>},
    {"Tx Packet", member<&OltGemPort::tx_packets>},
};

inline constexpr JsonField<OltPon> olt_pon[] = {
    {"Drift Positive", member<&OltPon::drift_positive>},
    {"Drift Negative", member<&OltPon::drift_negative>},
    {"Delimiter Miss Detection", member<&OltPon::delimiter_miss_detection>},
    {"BIP Errors", member<&OltPon::bip_errors>},
    {"BIP Units", member<&OltPon::bip_units>},
    {"FEC Corrected symbols", member<&OltPon::fec_corrected_symbols>},
    {"FEC Codewords Uncorrected", member<&OltPon::fec_codewords_uncorrected>},
    {"FEC Codewords Corrected", member<&OltPon::fec_codewords_corrected>},
    {"FEC Codewords", member<&OltPon::fec_codewords>},
    {"FEC Corrected Units", member<&OltPon::fec_corrected_units>},
    {"Rx PLOAMs Errors", member<&OltPon::rx_ploams_errors>},
    {"Rx PLOAMs Non Idle", member<&OltPon::rx_ploams_non_idle>},
    {"Rx OMCI", member<&OltPon::rx_omci>},
    {"Rx OMCI Packets CRC Error", member<&OltPon::rx_omci_packets_crc_error>},
    {"Rx Bytes", member<&OltPon::rx_bytes>},
    {"Rx Packets", member<&OltPon::rx_packets>},
    {"Tx Bytes", member<&OltPon::tx_bytes>},
    {"Tx Packets", member<&OltPon::tx_packets>},
    {"BER Reported", member<&OltPon::ber_reported>},
};

} // namespace xpon::api_service::counter_tables
