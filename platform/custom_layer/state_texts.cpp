#include "xpon/custom_layer/onts.h"
#include "xpon/custom_layer/pon_ports.h"

#include <array>
#include <cstddef>

namespace {

template <std::size_t Count>
const char* text_of(const std::array<const char*, Count>& texts, std::size_t value, const char* otherwise) {
    return value < texts.size() ? texts.at(value) : otherwise;
}

} // namespace

const char* channel_state_to_str(Pon_channel_state state) {
    static constexpr std::array texts{"DISABLED", "NO_MODULE", "STARTING", "ACTIVE", "FAULT"};
    return text_of(texts, state, "UNKNOWN");
}

const char* Pon_port_type_to_str(Pon_port_type type) {
    static constexpr std::array texts{"Unknown", "GPON", "XG-PON", "XGS-PON"};
    return text_of(texts, type, "Unknown");
}

const char* ont_state_to_str(Ont_state state) {
    static constexpr std::array texts{"UNKNOWN",        "INITIAL",    "STANDBY",        "SERIAL_NUMBER", "RANGING",
                                      "AUTHENTICATION", "MIB_UPLOAD", "CONFIGURING",    "OPERATIONAL",   "AUTH_FAILED",
                                      "CONFIG_FAILED",  "POPUP",      "EMERGENCY_STOP", "DISABLED"};
    return text_of(texts, state, "UNKNOWN");
}
