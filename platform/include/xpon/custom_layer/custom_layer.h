#pragma once

/* Calls of the switch-chip custom layer. Every call returns 0 on success; a failing one returns -1 with errno set. */

struct zlog_category_s;

extern "C" {

/// Prepares the layer: it logs to `category` (owned by zlog) and opens the configuration database that its calls
/// read. To be called before any other call, and again after the logging context was made anew. errno: EINVAL without
/// a category, EIO when the database cannot be opened; the log has the cause.
int custom_layer__init(struct zlog_category_s* category);

} // extern "C"
