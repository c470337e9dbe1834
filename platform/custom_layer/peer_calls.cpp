#include "custom_layer/peer_request.hpp"
#include "xpon/custom_layer/front_ports.h"
#include "xpon/custom_layer/onts.h"
#include "xpon/custom_layer/pon_ports.h"
#include "xpon/custom_layer/snmp.h"
#include "xpon/custom_layer/system.h"
#include "xpon/peer_side/operations.hpp"

// The calls that a peer answers, each one request.

using namespace xpon::custom_layer;
using xpon::peer_side::Operation;

int custom_layer__get_system_environment_info(Ipc* ipc, System_environment_data* out) {
    return ask_record(ipc, Operation::get_environment, no_question(), out);
}

int custom_layer__get_front_ports_link_states(Ipc* ipc, Bitmap_uplink_port_range* link_up) {
    return ask_record(ipc, Operation::get_front_link_states, no_question(), link_up);
}

int custom_layer__get_front_port_info(Ipc* ipc, std::uint8_t port, Front_port_info* out) {
    return ask_record(ipc, Operation::get_front_port_info, question(port), out);
}

int custom_layer__get_front_port_sfp_eddi(Ipc* ipc, std::uint8_t port, Front_port_sfp_eddi* out) {
    return ask_record(ipc, Operation::get_front_port_eddi, question(port), out);
}

int custom_layer__get_pon_ports_sfp_extended_information(Ipc* ipc, Pon_ports_sfp_extended_information** out) {
    return ask_block(ipc, Operation::get_pon_modules, no_question(), out);
}

int custom_layer__get_pon_ports_states(Ipc* ipc, Pon_ports_states** out) {
    return ask_block(ipc, Operation::get_pon_states, no_question(), out);
}

int custom_layer__get_pon_port_type(Ipc* ipc, std::uint8_t port, Pon_port_type* out) {
    return ask_record(ipc, Operation::get_pon_port_type, question(port), out);
}

int custom_layer__get_ont_state_info_by_range(Ipc* ipc, const Bitmap_ont_range* range,
                                              Ont__get_state_info_response** out) {
    return ask_list<Ont__state_info>(ipc, Operation::get_ont_states, question_at(range), out);
}

int custom_layer__get_ont_unactivated_by_range(Ipc* ipc, const Bitmap_pon_port_range* range,
                                               Ont_unactivated_info** out) {
    return ask_list<Ont_unactivated_entry>(ipc, Operation::get_unactivated_onts, question_at(range), out);
}

int custom_layer__generating_engine_id(Ipc* ipc, Snmp_environment_data* out) {
    return ask_record(ipc, Operation::get_engine_id, no_question(), out);
}
