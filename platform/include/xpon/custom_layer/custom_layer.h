#pragma once

// Calls of the switch-chip custom layer, by subject.
//
// Every call returns 0 on success. A failing one returns -1 with errno set, and leaves its output zero (a pointer
// null). Where an answer comes from a peer daemon, errno is one of
//   ECONNREFUSED, ECONNRESET, ENOTCONN   the peer is down
//   ETIMEDOUT                            it did not answer in 3 s
//   EHOSTDOWN                            it did not answer before and has not come back; fails at once
//   EIO                                  the device reports a fault, or the peer's answer is malformed
//   ENOMEM                               no memory for the answer
//   EINVAL, ERANGE                       a null or bad argument; a number that has no place in its table
// or what the peer says. Buffers returned through a pointer are one malloc block each: free() releases them, with
// everything that they point to. Texts are NUL-terminated. Port, ONT and service numbers count from 1 unless the
// comment says otherwise. `ipc` is what IIpc::raw() gives; calls must not run side by side.

#include "xpon/custom_layer/commands.h"
#include "xpon/custom_layer/configuration.h"
#include "xpon/custom_layer/device.h"
#include "xpon/custom_layer/front_ports.h"
#include "xpon/custom_layer/log_files.h"
#include "xpon/custom_layer/ont_counters.h"
#include "xpon/custom_layer/onts.h"
#include "xpon/custom_layer/pon_ports.h"
#include "xpon/custom_layer/snmp.h"
#include "xpon/custom_layer/subscribers.h"
#include "xpon/custom_layer/system.h"

struct zlog_category_s;

extern "C" {

/// Prepares the layer: it logs to `category` (owned by zlog) and opens the configuration database that its calls
/// read. To be called before any other call, and again after the logging context was made anew. errno: EINVAL without
/// a category, EIO when the database cannot be opened; the log has the cause.
int custom_layer__init(struct zlog_category_s* category);

} // extern "C"
