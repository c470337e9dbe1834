#include "xpon/custom_layer/snmp.h"

#include "custom_layer/peer_request.hpp"
#include "xpon/peer_side/operations.hpp"

int custom_layer__generating_engine_id(Ipc* ipc, Snmp_environment_data* out) {
    using namespace xpon::custom_layer;
    return ask_record(ipc, xpon::ipc::Operation::get_engine_id, no_question(), out);
}
