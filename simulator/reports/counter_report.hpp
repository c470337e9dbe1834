#pragma once

#include "simulator/plant/plant.hpp"
#include "xpon/custom_layer/ont_counters.h"

#include <cstdint>

namespace xpon::simulator {

// The counters of the ONT that is configured with a flat index. A record without instances, all of it zero, for an
// ONT whose counters are not collected. Bytes between members are zero, too: records travel
// as they are.

// What the ONT keeps itself: the last 15 minutes; nothing while it is not in service.
Ont_gem_port_pm report_gem_port_pm(const Plant& plant, std::uint16_t index);
Ont_gem_port_nctp_pm report_gem_port_nctp_pm(const Plant& plant, std::uint16_t index);
Ont_gal_eth_pm report_gal_eth_pm(const Plant& plant, std::uint16_t index);
Ont_fec_pm_counters report_fec_pm(const Plant& plant, std::uint16_t index);
Ont_eth_pm_history_data report_eth_pm(const Plant& plant, std::uint16_t index);
Ont_ethernet_pm_2 report_eth_pm_2(const Plant& plant, std::uint16_t index);
Ont_eth_pm_history_data_3 report_eth_pm_3(const Plant& plant, std::uint16_t index);
Ont_eth_frame_ext_pm report_eth_frame_ext_pm(const Plant& plant, std::uint16_t index);

// What the OLT keeps of it: since the ONT's activation, once it has been in service.
Ont__get_gem_port_counters_response report_olt_gem_ports(const Plant& plant, std::uint16_t index);
Ont__get_pon_counters_response report_olt_pon(const Plant& plant, std::uint16_t index);

} // namespace xpon::simulator
