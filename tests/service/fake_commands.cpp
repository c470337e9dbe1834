// The calls of the custom layer that act on the device: they only keep a journal.

#include "tests/service/fake_answers.hpp"

#include <fmt/format.h>

using namespace xpon::test;

namespace {

int note(const std::string& what) {
    return answer([&](auto& device) { return device.journal.push_back(what), 0; });
}

} // namespace

int custom_layer__reboot(int when) {
    return note(fmt::format("reboot {}", when));
}

int custom_layer__reconfigure_olt() {
    return note("reconfigure_olt");
}

int custom_layer__update_firmware(const char* path) {
    return note(fmt::format("update_firmware {}", path));
}

int custom_layer__select_image(Ipc*, std::uint32_t selector, void* reserved) {
    return note(fmt::format("select_image {} {}", selector, reserved == nullptr ? "null" : "not null"));
}

int custom_layer__reconfigure_pon_port(Ipc*, const Bitmap_pon_port_range* range) {
    std::string text = "reconfigure_pon_port";
    Bitmap_iterator iterator{};
    for (std::uint8_t port = 0; get_next_bitmap_pon_port_ids(range, &iterator, &port) == 0;) {
        text += fmt::format(" {}", port);
    }
    return note(text);
}

int custom_layer__reconfigure_ont(Ipc*, const Bitmap_ont_range* range) {
    return note("reconfigure_ont" + text_of(*range));
}

int custom_layer__omci_default(Ipc*, const Bitmap_ont_range* range) {
    return note("omci_default" + text_of(*range));
}

int custom_layer__omci_reboot(Ipc*, const Bitmap_ont_range* range) {
    return note("omci_reboot" + text_of(*range));
}
