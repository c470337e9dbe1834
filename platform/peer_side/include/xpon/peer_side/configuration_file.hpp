#pragma once

namespace xpon::cfgdb {

/// Whether this OLT has a configuration of its own: a saved file or a running database. Otherwise the first client
/// finds factory defaults.
bool configuration_exists();

// The operations on whole configurations. `db` is the handle of a CfgDbWrapper. They return 0, or -1 with errno set:
// EINVAL for a null argument, else the cause.

/// Writes the running configuration to `path`, taken below OLT_ROOT. After a failure the file is the one it was.
int save_running_configuration(const void* db, const char* path);

/// Puts the candidate to factory state.
int set_candidate_to_factory(const void* db);

/// Does what a start of the device does: running becomes the saved configuration, or factory state when there is none
/// that can be used; the candidate is dropped.
int restart_from_saved_configuration(const void* db);

} // namespace xpon::cfgdb
