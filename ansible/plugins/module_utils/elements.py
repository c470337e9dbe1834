"""The elements of the configuration: how they are told apart, and what is in a record that nobody has written to."""

from __future__ import annotations

import dataclasses
import itertools

from . import olt_api

PREFIX = "configuration."


@dataclasses.dataclass(frozen=True)
class Element:
    levels: tuple  # the last number of each index, or the constant of the OLT that tells it
    record: dict   # what an OLT of this version makes of {}
    is_read_only: bool = False


ELEMENTS = {
    "CommonGCfg.management": Element((), {
        "enabled": False, "vlan_id": 4000, "priority": 6, "address_mode": "static", "ip_address": "0.0.0.0",
        "prefix_length": 24, "gateway": "0.0.0.0", "dns_servers": ["0.0.0.0"] * 2, "web_access": True,
        "ssh_access": True, "telnet_access": False, "snmp_access": True, "allowed_sources": []}),
    "CommonGCfg.system.oob": Element((), {
        "enabled": True, "vlan_id": 0, "speed": "auto", "address_mode": "static", "ip_address": "192.168.77.10",
        "prefix_length": 24, "gateway": "0.0.0.0"}),
    "CommonGCfg.system.fan_speed": Element((), {
        "mode": "auto", "manual_percent": 60, "min_percent": 30, "target_temp_c": 55, "alarm_temp_c": 75},
        is_read_only=True),
    "CommonGCfg.system.reset_status": Element((), {
        "mode": "factory_default", "hold_time_s": 10}, is_read_only=True),
    "ZebGCfg.switch_config.front_port": Element(("FRONT_PORT_COUNT",), {
        "enabled": True, "description": "", "speed": "auto", "flow_control": "off", "max_frame_size": 2000, "pvid": 1,
        "tagged_vlans": "1-4094", "ingress_filter": True, "broadcast_limit_pps": 0, "multicast_router": "auto",
        "lldp": "both"}),
    "ZebGCfg.switch_config.port_channel": Element(("PORT_CHANNEL_COUNT",), {
        "enabled": False, "description": "", "members": [], "mode": "static", "lacp_timeout": "long",
        "hash": "src_dst_mac", "min_links": 1}),
    "ZebGCfg.pon.port_state": Element(("PON_PORT_COUNT",), {
        "enabled": True, "description": "", "odn_class": "b_plus", "reach_min_km": 0, "reach_max_km": 20,
        "discovery_interval_s": 10, "key_interval_s": 3600, "ont_limit": 256, "onu_auth": "serial",
        "downstream_fec": True, "rogue_detection": True, "dba_reporting": "status"}),
    "CommonGCfg.system.ntp": Element((), {
        "enabled": False, "servers": [], "min_poll": 6, "max_poll": 10, "interface": "any", "utc_offset_min": 0}),
    "CommonGCfg.system.snmp": Element((), {
        "enabled": False, "port": 161, "v2c_enabled": False, "v3_enabled": True, "engine_id": "", "sys_contact": "",
        "sys_location": "", "communities": [], "users": [], "trap_targets": [], "trap_link": True, "trap_ont": True,
        "trap_environment": True, "trap_config": True}),
    "CommonGCfg.profiles.profiles_ont.ont_template": Element(("ONT_TEMPLATE_COUNT",), {
        "name": "", "description": "", "ports_profile": 0, "management_profile": 0, "shaping_profile": 0,
        "upstream_fec": True, "services": [{"cross_connect": 0, "dba": 0}] * 8}),
    "CommonGCfg.profiles.profiles_ont.ports": Element(("PROFILE_PORTS_COUNT",), {
        "name": "", "eth": [{"enabled": True, "speed": "auto", "mac_limit": 16, "ingress_kbps": 0, "egress_kbps": 0,
                             "loop_detection": False}] * 4,
        "veip_enabled": True, "rf_video": False, "igmp_version": "v3",
        "igmp_mode": "snooping", "immediate_leave": True, "max_groups": 16, "max_multicast_kbps": 0,
        "multicast_ranges": [], "pots": [False] * 2, "sip_proxy": "", "sip_registrar": "", "sip_port": 5060,
        "sip_expires_s": 3600, "codec": "pcma"}),
    "CommonGCfg.profiles.profiles_ont.cross_connect": Element(("PROFILE_CROSS_CONNECT_COUNT",), {
        "name": "", "service_type": "data", "termination": "bridge", "uni_ports": [1], "uni_match": "untagged",
        "uni_vid": 0, "vlan_model": "n_to_1", "s_vid": 0, "c_vid": 0, "s_tpid": "0x8100", "priority_mode": "fixed",
        "priority": 0, "multicast_vid": 0, "igmp_snooping": False, "dhcp_agent": False, "pppoe_agent": False,
        "remote_id": "serial", "source_guard": False, "mac_limit": 8, "encryption": True,
        "broadcast_downstream": True, "local_switching": False}),
    "CommonGCfg.profiles.profiles_ont.management": Element(("PROFILE_MANAGEMENT_COUNT",), {
        "name": "", "mode": "omci", "acs_from_dhcp": False, "acs_url": "", "acs_user": "", "acs_secret": "",
        "inform_interval_s": 86400, "web_lan": True, "web_wan": False, "ssh_wan": False, "ping_wan": True,
        "admin_secret": "", "mib_audit_s": 300, "pm_collection": True}),
    "CommonGCfg.profiles.profiles_ont.dba": Element(("PROFILE_DBA_COUNT",), {
        "name": "", "tcont_type": "type4", "fixed_kbps": 0, "assured_kbps": 0, "maximum_kbps": 1244160,
        "additional": "best_effort", "priority": 4, "weight": 1, "shared": True}),
    "CommonGCfg.profiles.profiles_ont.shaping": Element(("PROFILE_SHAPING_COUNT",), {
        "name": "", "downstream_kbps": 0, "upstream_kbps": 0, "downstream_burst_bytes": 65536,
        "queues": [{"scheduling": "strict", "weight": 1, "min_kbps": 0, "max_kbps": 0, "upstream_max_kbps": 0}] * 8}),
    "ZebGCfg.pon.ont": Element(("PON_PORT_COUNT", 256), {
        "serial": [0] * 10, "enabled": True, "password": "", "description": "", "ont_template": 0, "ports_profile": 0,
        "management_profile": 0, "shaping_profile": 0, "upstream_fec": "template", "expected_equipment_id": "",
        "lines": [{"enabled": False, "number": "", "user": "", "secret": ""}] * 2}),
    "ZebGCfg.pon.ont.service": Element(("PON_PORT_COUNT", 256, 8), {
        "mode": "template", "cross_connect": 0, "dba": 0, "s_vid": 0, "c_vid": 0, "mac_limit": 0,
        "downstream_kbps": 0, "upstream_kbps": 0, "static_ip": "0.0.0.0", "subscriber_id": ""}),
    "CommonGCfg.system.settings.ont_sn_format": Element((), {
        "format": "vendor_hex"}),
    "CommonGCfg.hostname": Element((), {
        "hostname": "olt"}),
}

# Of the lists that have as many items as are given: what is left out of an item.
ITEMS = {
    "allowed_sources": {"network": "0.0.0.0", "prefix_length": 32},
    "servers": {"version": 4, "prefer": False},
    "communities": {"access": "read", "source": "0.0.0.0", "source_prefix": 0},
    "users": {"security_level": "auth_priv", "auth_protocol": "sha1", "auth_secret": "", "priv_protocol": "aes128",
              "priv_secret": "", "access": "read"},
    "trap_targets": {"address": "0.0.0.0", "port": 162, "version": "v2c", "inform": False},
    "multicast_ranges": {"first": "239.0.0.0", "last": "239.255.255.255"},
}

# Lists of port numbers, which have no order: they are read ascending.
PORT_SETS = ("members", "uni_ports")

# An ONT that is deleted takes its services with it.
ONT, SERVICE, SERVICES_OF_AN_ONT = "ZebGCfg.pon.ont", "ZebGCfg.pon.ont.service", 8


def named(name):
    """The name of an element as it stands in the table. Raises ValueError when there is none."""
    short = str(name).removeprefix(PREFIX)
    if short not in ELEMENTS:
        raise ValueError(f"the configuration has no element {name!r}; it has {', '.join(sorted(ELEMENTS))}")
    return short


def places(name, indices):
    """The records that "1/1-8,12" names, as tuples of numbers, ascending."""
    lists = [text for text in str(indices or "").split("/") if text]
    depth = len(ELEMENTS[name].levels)
    if len(lists) != depth:
        wanted = "/".join(["PON port", "ONT", "service"][:depth]) if depth > 1 else "a number or range"
        raise ValueError(f"{name} takes {f'indices of the form {wanted}' if depth else 'no indices'}, not {indices!r}")
    return list(itertools.product(*map(olt_api.numbers, lists)))


def all_places(name, constants):
    """The index lists that name every record of an OLT with these constants."""
    return [f"1-{constants.get(last, 1) if isinstance(last, str) else last}" for last in ELEMENTS[name].levels]


def rectangles(some_places):
    """The index lists, one tuple for each request, that name these places and no others."""
    ordered = sorted(some_places)
    if not ordered or not ordered[0]:
        return [()] if ordered else []
    firsts_of = {}
    for first, group in itertools.groupby(ordered, key=lambda place: place[0]):
        for lists in rectangles([place[1:] for place in group]):
            firsts_of.setdefault(lists, []).append(first)
    return [(olt_api.ranges_of(firsts), *lists) for lists, firsts in firsts_of.items()]
