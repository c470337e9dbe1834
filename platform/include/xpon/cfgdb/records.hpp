#pragma once

// The records of the configuration.
//
// In all records flags are 0 or 1; of an address the first octet is the most significant, and 0 is none; bit n-1 of a
// set of ports is port n, bit v of a set of VLANs VID v; secrets are in obfuscated form; profiles and templates are
// numbered from 1 and defined when their name is not empty, number 0 is none. What members mean beyond that is told
// beside them, for readers of docs/data-model.md too.

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
