#include "xpon/custom_layer/commands.h"

#include "custom_layer/own_connection.hpp"
#include "custom_layer/peer_request.hpp"
#include "xpon/core/call_budget.hpp"
#include "xpon/peer_side/operations.hpp"

#include <chrono>
#include <cstring>

using namespace xpon::custom_layer;
using xpon::peer_side::Operation;

namespace {

/// An order to the system manager, over the layer's own connection.
int order_device(Operation operation, const Question& question) {
    return xpon::core::c_function([&] { return order(own_connection(), operation, question); });
}

/// Until the update has ended. The system manager keeps back the answer of one that goes on.
int await_update() {
    // No flash is that slow.
    const xpon::core::CallBudget longest(std::chrono::minutes(30));
    while (order_device(Operation::get_firmware_update_status, no_question()) != 0) {
        if (errno != EBUSY) {
            return -1;
        }
        if (const int refusal = xpon::core::CallBudget::refusal()) {
            xpon::core::fail_with(refusal);
        }
    }
    return 0;
}

} // namespace

int custom_layer__reboot(int when) {
    const auto at = static_cast<std::uint32_t>(when);
    return order_device(Operation::reboot, when == reboot_now ? question(at) : std::nullopt);
}

int custom_layer__reconfigure_olt() {
    return order_device(Operation::reconfigure_olt, no_question());
}

int custom_layer__update_firmware(const char* path) {
    const auto asked = path == nullptr ? Question() : std::as_bytes(std::span(path, std::strlen(path)));
    return xpon::core::c_function(
        [&] { return order_device(Operation::update_firmware, asked) != 0 ? -1 : await_update(); });
}

int custom_layer__select_image(Ipc* ipc, std::uint32_t selector, void* reserved) {
    return order(ipc, Operation::select_image, reserved == nullptr ? question(selector) : std::nullopt);
}

int custom_layer__reconfigure_pon_port(Ipc* ipc, const Bitmap_pon_port_range* range) {
    return order(ipc, Operation::reconfigure_pon_ports, question_at(range));
}

int custom_layer__reconfigure_ont(Ipc* ipc, const Bitmap_ont_range* range) {
    return order(ipc, Operation::reconfigure_onts, question_at(range));
}

int custom_layer__omci_default(Ipc* ipc, const Bitmap_ont_range* range) {
    return order(ipc, Operation::reset_onts, question_at(range));
}

int custom_layer__omci_reboot(Ipc* ipc, const Bitmap_ont_range* range) {
    return order(ipc, Operation::reboot_onts, question_at(range));
}
