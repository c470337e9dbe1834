#pragma once

namespace xpon::gateway {

/// Passwords pass through texts, buffers and trees of several libraries. In the program that this is linked into,
/// operator delete overwrites what it frees; this call has cJSON do so too.
void overwrite_freed_trees();

} // namespace xpon::gateway
