#pragma once

#include <cstdint>

extern "C" {

/// The names of the device's log files that are not empty, sorted. `db` and `context` are CfgDbWrapper's handle() and
/// context(). Unlike elsewhere the array and each of its names are malloc blocks of their own: the caller frees every
/// name, then the array. Without any file the array is null and the count 0. EINVAL for a null pointer, EIO or the
/// file system's errno when the folder cannot be read.
int custom_layer__get_list_log_files(const void* db, int context, char*** names, std::uint32_t* count);

} // extern "C"
