#pragma once

#include "xpon/cfgdb/records/front_port.hpp"
#include "xpon/cfgdb/records/ntp_config.hpp"
#include "xpon/cfgdb/records/ont_services.hpp"
#include "xpon/cfgdb/records/ont_sn_format.hpp"
#include "xpon/cfgdb/records/ont_template.hpp"
#include "xpon/cfgdb/records/oob_port.hpp"
#include "xpon/cfgdb/records/pon_ont.hpp"
#include "xpon/cfgdb/records/pon_port.hpp"
#include "xpon/cfgdb/records/port_channel.hpp"
#include "xpon/cfgdb/records/profile_ont_cross_connect.hpp"
#include "xpon/cfgdb/records/profile_ont_dba.hpp"
#include "xpon/cfgdb/records/profile_ont_management.hpp"
#include "xpon/cfgdb/records/profile_ont_ports.hpp"
#include "xpon/cfgdb/records/profile_ont_shaping.hpp"
#include "xpon/cfgdb/records/reset_button_mode.hpp"
#include "xpon/cfgdb/records/snmp_config.hpp"
#include "xpon/cfgdb/records/system_fan_speed.hpp"
#include "xpon/cfgdb/records/system_hostname.hpp"
#include "xpon/cfgdb/records/system_management.hpp"

/// The elements of the configuration, one row each:
/// X(suffix of the database functions, record type, depth, elements of level 1, elements of level 2, path below
/// "configuration."). Depth is the number of indices that address one record. Everything that exists once per element
/// (database functions, serialisers, storage, saved file) is made from this list. The position of a row is written
/// into change notices; new rows go to the end.
///
/// In all records flags are 0 or 1; of an address the first octet is the most significant, and 0 is none; bit n-1 of a
/// set of ports is port n, bit v of a set of VLANs VID v; secrets are in obfuscated form; profiles and templates are
/// numbered from 1 and defined when their name is not empty, number 0 is none. What members mean beyond that is told
/// beside them, for readers of docs/data-model.md too.
// clang-format off
#define XPON_CFGDB_ELEMENTS(X)                                                                                         \
    X(CommonGCfg_management, GSystemManagement, 0, 1, 1, "CommonGCfg.management")                                      \
    X(CommonGCfg_system_oob, OobPort, 0, 1, 1, "CommonGCfg.system.oob")                                                \
    X(CommonGCfg_fan_speed, GSystemFanSpeed, 0, 1, 1, "CommonGCfg.system.fan_speed")                                   \
    X(CommonGCfg_reset_button_mode, GResetButtonMode, 0, 1, 1, "CommonGCfg.system.reset_status")                       \
    X(ZebGCfg_switch_config_front_port, FrontPort, 1, 16, 1, "ZebGCfg.switch_config.front_port")                       \
    X(ZebGCfg_switch_config_lag_port_channel, PortChannel, 1, 10, 1, "ZebGCfg.switch_config.port_channel")             \
    X(ZebGCfg_pon_port_state, PonPort, 1, 16, 1, "ZebGCfg.pon.port_state")                                             \
    X(CommonGCfg_system_ntp, NtpConfig, 0, 1, 1, "CommonGCfg.system.ntp")                                              \
    X(CommonGCfg_system_snmp, GSysSnmpCfg, 0, 1, 1, "CommonGCfg.system.snmp")                                          \
    X(CommonGCfg_profiles_profiles_ont_ont_template, OntTemplate, 1, 32, 1,                                            \
      "CommonGCfg.profiles.profiles_ont.ont_template")                                                                 \
    X(CommonGCfg_profiles_profiles_ont_ports, ProfileOntPortsCfg, 1, 64, 1, "CommonGCfg.profiles.profiles_ont.ports")  \
    X(CommonGCfg_profiles_profiles_ont_cross_connect, ProfileOntCrossConnect, 1, 255, 1,                               \
      "CommonGCfg.profiles.profiles_ont.cross_connect")                                                                \
    X(CommonGCfg_profiles_profiles_ont_management, ProfileOntManagementCfg, 1, 32, 1,                                  \
      "CommonGCfg.profiles.profiles_ont.management")                                                                   \
    X(CommonGCfg_profiles_profiles_ont_dba, ProfileOntDba, 1, 255, 1, "CommonGCfg.profiles.profiles_ont.dba")          \
    X(CommonGCfg_profiles_profiles_ont_shaping, ProfileOntShaping, 1, 32, 1,                                           \
      "CommonGCfg.profiles.profiles_ont.shaping")                                                                      \
    X(ZebGCfg_pon_ont, PonOnt, 1, 4096, 1, "ZebGCfg.pon.ont")                                                          \
    X(ZebGCfg_pon_ont_ont_common_service, OntServices, 2, 4096, 8, "ZebGCfg.pon.ont.service")                          \
    X(CommonGCfg_ont_sn_format, OntSNFormat, 0, 1, 1, "CommonGCfg.system.settings.ont_sn_format")                      \
    X(CommonGCfg_hostname, GSystemHostname, 0, 1, 1, "CommonGCfg.hostname")
// clang-format on
