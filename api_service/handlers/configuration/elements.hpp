#pragma once

#include "xpon/cfgdb/element_functions.hpp"
#include "xpon/serializer/serializer.hpp"

#include <cstddef>

/// One type per configuration element: its record, its depth and the library functions that serve it.
namespace xpon::api_service::elements {

#define XPON_READ_ONLY(suffix, record, levels)                                                                         \
    using Record = cfgdb::record;                                                                                      \
    static constexpr std::size_t depth = levels;                                                                       \
    static constexpr auto* read_candidate = &getDb_##suffix;                                                           \
    static constexpr auto* read_running = &getRunDb_##suffix;                                                          \
    static constexpr auto* serialize = &serialize_##record##_to_json;
#define XPON_READ_WRITE(suffix, record, levels)                                                                        \
    XPON_READ_ONLY(suffix, record, levels)                                                                             \
    static constexpr auto* write = &setDb_##suffix;                                                                    \
    static constexpr auto* deserialize = &deserialize_##record##_from_json;
#define XPON_RESETTABLE(suffix, record, levels)                                                                        \
    XPON_READ_WRITE(suffix, record, levels)                                                                            \
    static constexpr auto* initialise = &setDb_init_##suffix;

/// ELEMENT(what clients may do, suffix of the database functions, record, number of indices of one record)
#define XPON_API_ELEMENTS(ELEMENT)                                                                                     \
    ELEMENT(XPON_READ_WRITE, CommonGCfg_management, GSystemManagement, 0)                                              \
    ELEMENT(XPON_READ_WRITE, CommonGCfg_system_oob, OobPort, 0)                                                        \
    ELEMENT(XPON_READ_ONLY, CommonGCfg_fan_speed, GSystemFanSpeed, 0)                                                  \
    ELEMENT(XPON_READ_ONLY, CommonGCfg_reset_button_mode, GResetButtonMode, 0)                                         \
    ELEMENT(XPON_READ_WRITE, ZebGCfg_switch_config_front_port, FrontPort, 1)                                           \
    ELEMENT(XPON_READ_WRITE, ZebGCfg_switch_config_lag_port_channel, PortChannel, 1)                                   \
    ELEMENT(XPON_READ_WRITE, ZebGCfg_pon_port_state, PonPort, 1)                                                       \
    ELEMENT(XPON_READ_WRITE, CommonGCfg_system_ntp, NtpConfig, 0)                                                      \
    ELEMENT(XPON_READ_WRITE, CommonGCfg_system_snmp, GSysSnmpCfg, 0)                                                   \
    ELEMENT(XPON_READ_WRITE, CommonGCfg_profiles_profiles_ont_ont_template, OntTemplate, 1)                            \
    ELEMENT(XPON_READ_WRITE, CommonGCfg_profiles_profiles_ont_ports, ProfileOntPortsCfg, 1)                            \
    ELEMENT(XPON_READ_WRITE, CommonGCfg_profiles_profiles_ont_cross_connect, ProfileOntCrossConnect, 1)                \
    ELEMENT(XPON_READ_WRITE, CommonGCfg_profiles_profiles_ont_management, ProfileOntManagementCfg, 1)                  \
    ELEMENT(XPON_READ_WRITE, CommonGCfg_profiles_profiles_ont_dba, ProfileOntDba, 1)                                   \
    ELEMENT(XPON_READ_WRITE, CommonGCfg_profiles_profiles_ont_shaping, ProfileOntShaping, 1)                           \
    ELEMENT(XPON_RESETTABLE, ZebGCfg_pon_ont, PonOnt, 1)                                                               \
    ELEMENT(XPON_READ_WRITE, ZebGCfg_pon_ont_ont_common_service, OntServices, 2)                                       \
    ELEMENT(XPON_READ_WRITE, CommonGCfg_ont_sn_format, OntSNFormat, 0)                                                 \
    ELEMENT(XPON_READ_WRITE, CommonGCfg_hostname, GSystemHostname, 0)

#define XPON_BIND_ELEMENT(access, suffix, record, levels)                                                              \
    struct suffix {                                                                                                    \
        access(suffix, record, levels)                                                                                 \
    };
XPON_API_ELEMENTS(XPON_BIND_ELEMENT)

} // namespace xpon::api_service::elements
