#pragma once

#include "api_service/handlers/monitoring/ont_counter_tables.hpp"

// What the answers about counters look like, kind by kind.

namespace xpon::api_service::counter_shapes {

/// An object of `counters` under a key for each instance, beside the members of other tables.
template <const auto& key, const Shape& counters, const auto&... tables>
inline constexpr Shape by_instance{
    .form = Shape::Form::object, .item = &counters, .key_format = key, .members = members_of<tables...>};

template <const Shape& counters>
inline constexpr Member gem_groups[] = {{multicast_key, &counters, "the multicast GEM port", true},
                                        {broadcast_key, &counters, "the broadcast GEM port", true}};

inline constexpr Shape gem_port_counters = named("GemPortCounters", object_of<counter_tables::gem_port>);
inline constexpr Shape gem_port = by_instance<service_key, gem_port_counters, gem_groups<gem_port_counters>>;

inline constexpr Shape nctp_downstream_counters =
    named("GemPortNctpDownstreamCounters", object_of<counter_tables::nctp_downstream>);
inline constexpr Shape nctp_upstream_counters =
    named("GemPortNctpUpstreamCounters", object_of<counter_tables::nctp_upstream>);
inline constexpr Member nctp_directions[] = {
    {downstream_gem_ports_key,
     &by_instance<service_key, nctp_downstream_counters, gem_groups<nctp_downstream_counters>>, "", true},
    {upstream_gem_ports_key, &by_instance<service_key, nctp_upstream_counters>, "", true},
};
inline constexpr Shape nctp = object_of<nctp_directions>;

inline constexpr Shape ethernet_counters = named("EthernetCounters", object_of<counter_tables::ethernet>);
inline constexpr Shape ethernet = by_instance<port_key, ethernet_counters>;
inline constexpr Shape ethernet_2_counters = named("EthernetCounters2", object_of<counter_tables::ethernet_2>);
inline constexpr Shape ethernet_2 = by_instance<port_key, ethernet_2_counters>;
inline constexpr Shape ethernet_3_counters = named("EthernetCounters3", object_of<counter_tables::ethernet_3>);
inline constexpr Shape ethernet_3 = by_instance<port_key, ethernet_3_counters>;

inline constexpr Shape gal_ethernet_counters = named("GalEthernetCounters", object_of<counter_tables::gal_ethernet>);
inline constexpr Shape gal_ethernet =
    by_instance<service_key, gal_ethernet_counters, gem_groups<gal_ethernet_counters>>;

inline constexpr Shape fec_counters = named("FecCounters", object_of<counter_tables::fec>);
inline constexpr Shape fec = by_instance<port_key, fec_counters>;

inline constexpr Shape frame_extended_counters =
    named("FrameExtendedCounters", object_of<counter_tables::frame_extended>);
inline constexpr Member veip[] = {{veip_key, &frame_extended_counters, "the virtual Ethernet port", true}};
inline constexpr Member frame_directions[] = {
    {upstream_ports_key, &by_instance<port_key, frame_extended_counters, veip>, "", true},
    {downstream_ports_key, &by_instance<port_key, frame_extended_counters, veip>, "", true},
};
inline constexpr Shape frame_extended = object_of<frame_directions>;

inline constexpr Shape olt_gem_port_counters = named("OltGemPortCounters", object_of<counter_tables::olt_gem_port>);
inline constexpr Shape olt_gem_ports = by_instance<gem_port_key, olt_gem_port_counters>;
inline constexpr Member olt_gem_groups[] = {{multicast_ports_key, &olt_gem_ports, "", true},
                                            {broadcast_ports_key, &olt_gem_ports, "", true}};
inline constexpr Shape olt_gem_port = by_instance<gem_port_key, olt_gem_port_counters, olt_gem_groups>;

inline constexpr Shape olt_pon = named("OltPonCounters", object_of<counter_tables::olt_pon>);

/// The route of a kind, with the object of one ONT.
template <const Shape& ont>
inline constexpr RouteShape route{.indices = IndexCount::one_or_two, .answer = &array_of<ont>};

} // namespace xpon::api_service::counter_shapes
