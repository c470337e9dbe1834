#include "xpon/ranges/port_ranges.h"

#include "ranges/bitmap.hpp"
#include "ranges/board_ports.hpp"
#include "ranges/number_list.hpp"

namespace {

using namespace xpon;
using namespace xpon::ranges;

template <class Bitmap>
int parse_ports(const char* text, std::uint32_t ports, Bitmap* out) {
    return core::c_function([&] {
        prepare(out, ports + 1);
        NumberSet chosen;
        if (const int fault = parse_number_list(required(text), ports, chosen)) {
            core::fail_with(fault);
        }
        for (std::uint32_t port = 1; port <= ports; ++port) {
            if (chosen[port]) {
                bitfield_set_bit(out->bits, out->size, port);
            }
        }
    });
}

} // namespace

int prepare_bitmap_pon_port(Bitmap_pon_port_range* bitmap) {
    return core::c_function([&] { prepare(bitmap, board_pon_ports() + 1); });
}

int get_parsed_uplink_port_range(const char* text, Bitmap_uplink_port_range* out) {
    return parse_ports(text, board_uplink_ports(), out);
}

int get_parsed_pon_port_range(const char* text, Bitmap_pon_port_range* out) {
    return parse_ports(text, board_pon_ports(), out);
}

int get_next_bitmap_uplink_port_ids(const Bitmap_uplink_port_range* bitmap, Bitmap_iterator* iterator,
                                    std::uint8_t* port) {
    return next_number(bitmap, iterator, port);
}

int get_next_bitmap_pon_port_ids(const Bitmap_pon_port_range* bitmap, Bitmap_iterator* iterator, std::uint8_t* port) {
    return next_number(bitmap, iterator, port);
}

int get_bitmap_uplink_port_ids_value(const Bitmap_uplink_port_range* bitmap, std::uint8_t port, std::uint8_t* value) {
    return core::c_function(value, [&] {
        require_valid(bitmap);
        if (port == 0 || port >= bitmap->size) {
            core::fail_with(ERANGE);
        }
        return static_cast<std::uint8_t>(has_bit(bitmap->bits, port));
    });
}
