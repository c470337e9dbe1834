#include "xpon/ranges/ont_range.h"

#include "ranges/bitmap.hpp"
#include "ranges/board_ports.hpp"
#include "ranges/number_list.hpp"

namespace {

using namespace xpon;
using namespace xpon::ranges;

constexpr std::string_view all_onts = "1-256";

void prepare_onts(Bitmap_ont_range* bitmap) {
    prepare(bitmap, board_pon_ports() * max_onts_per_pon_port);
}

void add_onts(std::string_view ports, std::string_view onts, Bitmap_ont_range& out) {
    NumberSet chosen_ports;
    NumberSet chosen_onts;
    const int port_fault = parse_number_list(ports, board_pon_ports(), chosen_ports);
    const int ont_fault = parse_number_list(onts, max_onts_per_pon_port, chosen_onts);
    if (port_fault != 0 || ont_fault != 0) {
        core::fail_with(port_fault == EINVAL || ont_fault == EINVAL ? EINVAL : ERANGE);
    }
    for (std::uint32_t bit = 0; bit < out.size; ++bit) {
        if (chosen_ports[bit / max_onts_per_pon_port + 1] && chosen_onts[bit % max_onts_per_pon_port + 1]) {
            bitfield_set_bit(out.bits, out.size, bit);
        }
    }
}

} // namespace

int prepare_bitmap_ont(Bitmap_ont_range* bitmap) {
    return core::c_function([&] { prepare_onts(bitmap); });
}

int get_next_bitmap_ont_ids(const Bitmap_ont_range* bitmap, Bitmap_iterator* iterator, std::uint8_t* port,
                            std::uint16_t* ont) {
    return core::c_function([&] {
        if (port == nullptr || ont == nullptr) {
            core::fail_with(EINVAL);
        }
        *port = 0;
        *ont = 0;
        const auto bit = next_bit(bitmap, iterator, 0);
        *port = static_cast<std::uint8_t>(bit.value_or(0) / max_onts_per_pon_port);
        *ont = static_cast<std::uint16_t>(bit.value_or(0) % max_onts_per_pon_port);
        return bit ? 0 : 1;
    });
}

int get_parsed_ont_range(const char* ports, const char* onts, Bitmap_ont_range* out) {
    return core::c_function([&] {
        prepare_onts(out);
        add_onts(required(ports), required(onts), *out);
    });
}

int get_parsed_ont_range(const char* ports_and_onts, Bitmap_ont_range* out) {
    return core::c_function([&] {
        prepare_onts(out);
        const auto text = required(ports_and_onts);
        const auto slash = text.find('/');
        const bool names_onts = slash != std::string_view::npos;
        add_onts(text.substr(0, slash), names_onts ? text.substr(slash + 1) : all_onts, *out);
    });
}
