#pragma once

struct Ipc;

/// What the device tells its SNMP agent.
struct Snmp_environment_data {
    char engine_id[65]; ///< hexadecimal digits, lower case [RFC 3411]
};

extern "C" {

/// The engine id that stands for this board: always the same. Asked from the dna daemon.
int custom_layer__generating_engine_id(Ipc* ipc, Snmp_environment_data* out);

} // extern "C"
