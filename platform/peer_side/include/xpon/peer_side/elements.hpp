#pragma once

#include "xpon/cfgdb/records.hpp"

/// The elements of the configuration, one row each:
/// W(suffix of the database functions, record type, depth, elements of level 1, elements of level 2, path below
/// "configuration."). Depth is the number of indices that address one record. Everything that exists once per element
/// (database functions, serialisers, storage, saved file) is made from this list. The position of a row is written
/// into change notices; new rows go to the end. A row is W's when clients may write the element, else R's.
// clang-format off
#define XPON_CFGDB_ELEMENTS_BY_ACCESS(W, R)                                                                            \
    W(CommonGCfg_management, GSystemManagement, 0, 1, 1, "CommonGCfg.management")                                      \
    W(CommonGCfg_system_oob, OobPort, 0, 1, 1, "CommonGCfg.system.oob")                                                \
    R(CommonGCfg_fan_speed, GSystemFanSpeed, 0, 1, 1, "CommonGCfg.system.fan_speed")                                   \
    R(CommonGCfg_reset_button_mode, GResetButtonMode, 0, 1, 1, "CommonGCfg.system.reset_status")                       \
    W(ZebGCfg_switch_config_front_port, FrontPort, 1, 16, 1, "ZebGCfg.switch_config.front_port")                       \
    W(ZebGCfg_switch_config_lag_port_channel, PortChannel, 1, 10, 1, "ZebGCfg.switch_config.port_channel")             \
    W(ZebGCfg_pon_port_state, PonPort, 1, 16, 1, "ZebGCfg.pon.port_state")                                             \
    W(CommonGCfg_system_ntp, NtpConfig, 0, 1, 1, "CommonGCfg.system.ntp")                                              \
    W(CommonGCfg_system_snmp, GSysSnmpCfg, 0, 1, 1, "CommonGCfg.system.snmp")                                          \
    W(CommonGCfg_profiles_profiles_ont_ont_template, OntTemplate, 1, 32, 1,                                            \
      "CommonGCfg.profiles.profiles_ont.ont_template")                                                                 \
    W(CommonGCfg_profiles_profiles_ont_ports, ProfileOntPortsCfg, 1, 64, 1, "CommonGCfg.profiles.profiles_ont.ports")  \
    W(CommonGCfg_profiles_profiles_ont_cross_connect, ProfileOntCrossConnect, 1, 255, 1,                               \
      "CommonGCfg.profiles.profiles_ont.cross_connect")                                                                \
    W(CommonGCfg_profiles_profiles_ont_management, ProfileOntManagementCfg, 1, 32, 1,                                  \
      "CommonGCfg.profiles.profiles_ont.management")                                                                   \
    W(CommonGCfg_profiles_profiles_ont_dba, ProfileOntDba, 1, 255, 1, "CommonGCfg.profiles.profiles_ont.dba")          \
    W(CommonGCfg_profiles_profiles_ont_shaping, ProfileOntShaping, 1, 32, 1,                                           \
      "CommonGCfg.profiles.profiles_ont.shaping")                                                                      \
    W(ZebGCfg_pon_ont, PonOnt, 1, 4096, 1, "ZebGCfg.pon.ont")                                                          \
    W(ZebGCfg_pon_ont_ont_common_service, OntServices, 2, 4096, 8, "ZebGCfg.pon.ont.service")                          \
    W(CommonGCfg_ont_sn_format, OntSNFormat, 0, 1, 1, "CommonGCfg.system.settings.ont_sn_format")                      \
    W(CommonGCfg_hostname, GSystemHostname, 0, 1, 1, "CommonGCfg.hostname")
// clang-format on
#define XPON_CFGDB_ELEMENTS(X) XPON_CFGDB_ELEMENTS_BY_ACCESS(X, X)
