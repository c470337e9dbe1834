#pragma once

#include "xpon/ranges/ont_range.h"
#include "xpon/ranges/port_ranges.h"

#include <cstdint>

struct Ipc;

// Calls that act on the device. 0 means that the daemon concerned has taken the command, not that it is through.

/// The argument of custom_layer__reboot.
inline constexpr int reboot_now = 0;

/// The selector of custom_layer__select_image: which slot runs after the next boot.
enum Firmware_selector : std::uint32_t {
    firmware_current = 0,   ///< the one that runs
    firmware_alternate = 1, ///< the other one
};

extern "C" {

// These three take no handle: they reach the system manager over a connection of the layer's own.

/// Reboots the OLT into the next-boot slot and the saved configuration; `when` must be `reboot_now` (else EINVAL).
/// Its daemons are away for a while.
int custom_layer__reboot(int when);
/// Makes every PON port start again. The device's uptime goes on.
int custom_layer__reconfigure_olt();
/// Writes the firmware image in the file `path`, taken below OLT_ROOT, to the slot that does not run, and returns when
/// it is there. The next boot does not change. An image that is refused changes nothing: ENOENT for no such file,
/// EINVAL for no firmware image, ENODEV for another device's, ENODATA for a file shorter and EFBIG for one longer than
/// its header says, EBADMSG for a wrong checksum, EBUSY while another update runs. One that is accepted and then fails
/// leaves its slot invalid: ECANCELED or the errno of a lost peer when the device restarted meanwhile, else the errno
/// of the flash. EINTR when the caller is to stop meanwhile: the writing goes on.
int custom_layer__update_firmware(const char* path);

/// Chooses the slot that runs after the next boot. EINVAL when that slot holds no valid image. `reserved` must be null.
int custom_layer__select_image(Ipc* ipc, std::uint32_t selector, void* reserved);

// Asked from the PON state machine.

/// Makes the PON ports of the range start again.
int custom_layer__reconfigure_pon_port(Ipc* ipc, const Bitmap_pon_port_range* range);

// ONTs of the range that are not activated are passed over.

/// Provisions the ONTs anew over OMCI.
int custom_layer__reconfigure_ont(Ipc* ipc, const Bitmap_ont_range* range);
/// Has the ONTs forget their local data and restart.
int custom_layer__omci_default(Ipc* ipc, const Bitmap_ont_range* range);
/// Has the ONTs restart.
int custom_layer__omci_reboot(Ipc* ipc, const Bitmap_ont_range* range);

} // extern "C"
