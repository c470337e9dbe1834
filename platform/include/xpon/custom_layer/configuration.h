#pragma once

// Calls about whole configurations. See custom_layer.h for what they return.

struct Ipc;

extern "C" {

/// Writes the running configuration to the file `path`, taken below OLT_ROOT, unless the dna daemon is down or forbids
/// it; without `ipc` it is not asked. `db` and `context` come from a CfgDbWrapper. After a failure the file is the one
/// it was. errno: EINVAL for another null argument, else the cause.
int custom_layer__configuration_save(struct Ipc* ipc, const void* db, int context, const char* path);

/// Fills the candidate with factory defaults; a commit makes them run.
int custom_layer__configuration_set_default(const void* db, int context);

} // extern "C"
