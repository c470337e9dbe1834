#include "xpon/cfgdb/records/pon_ont.hpp"
#include "xpon/custom_layer/onts.h"
#include "xpon/peer_side/serial_bytes.hpp"

#include <algorithm>
#include <limits>

int custom_layer__is_ont_configured_unsafe(const xpon::cfgdb::PonOnt* record) {
    return record != nullptr && record->serial != 0 ? 1 : 0;
}

void unsigned_long_serial_to_bin(std::uint64_t serial, std::uint8_t* serial_bin) {
    const auto bytes = xpon::serial_bytes(serial);
    static_assert(bytes.size() == ont_serial_bin_size);
    std::ranges::copy(bytes, serial_bin);
}

unsigned short get_ont_config_index(unsigned port, unsigned ont) {
    const bool exists = port < max_pon_ports && ont < max_onts_per_pon_port;
    return exists ? static_cast<unsigned short>(port * max_onts_per_pon_port + ont)
                  : std::numeric_limits<unsigned short>::max();
}
