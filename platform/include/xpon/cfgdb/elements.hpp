#pragma once

#include "xpon/cfgdb/records/ntp_config.hpp"
#include "xpon/cfgdb/records/ont_services.hpp"
#include "xpon/cfgdb/records/pon_ont.hpp"
#include "xpon/cfgdb/records/system_hostname.hpp"

/// The elements of the configuration, one row each:
/// X(suffix of the database functions, record type, depth, elements of level 1, elements of level 2, path below
/// "configuration."). Depth is the number of indices that address one record. Everything that exists once per element
/// (database functions, serialisers, storage, saved file) is made from this list. The position of a row is written
/// into change notices; new rows go to the end.
#define XPON_CFGDB_ELEMENTS(X)                                                                                         \
    X(CommonGCfg_system_ntp, NtpConfig, 0, 1, 1, "CommonGCfg.system.ntp")                                              \
    X(CommonGCfg_hostname, GSystemHostname, 0, 1, 1, "CommonGCfg.hostname")                                            \
    X(ZebGCfg_pon_ont, PonOnt, 1, 4096, 1, "ZebGCfg.pon.ont")                                                          \
    X(ZebGCfg_pon_ont_ont_common_service, OntServices, 2, 4096, 8, "ZebGCfg.pon.ont.service")
