#include "xpon/ranges/port_ranges.h"

#include "ranges/bitmap.hpp"
#include "ranges/board_ports.hpp"
#include "ranges/number_list.hpp"

namespace {

using namespace xpon::ranges;

template <class Bitmap>
int parse_ports(const char* text, std::uint32_t ports, Bitmap* out) {
    if (prepare(out, ports + 1) != 0 || text == nullptr) {
        return fail(EINVAL);
    }
    const int fault = for_each_number(text, ports, [&](auto port) { bitfield_set_bit(out->bits, out->size, port); });
    if (fault != 0) {
        bitfield_reset(out->bits, out->size);
        return fail(fault);
    }
    return 0;
}

template <class Bitmap>
int next_port(const Bitmap* bitmap, Bitmap_iterator* iterator, std::uint8_t* port) {
    std::uint32_t bit = 0;
    if (port == nullptr) {
        return fail(EINVAL);
    }
    const int status = next_bit(bitmap, iterator, 1, bit);
    *port = status == 0 ? static_cast<std::uint8_t>(bit) : std::uint8_t{0};
    return status;
}

template <class Bitmap>
int port_value(const Bitmap* bitmap, std::uint8_t port, std::uint8_t* value) {
    if (!is_valid(bitmap) || value == nullptr) {
        return fail(EINVAL);
    }
    *value = 0;
    if (port == 0 || port >= bitmap->size) {
        return fail(ERANGE);
    }
    *value = has_bit(*bitmap, port) ? 1 : 0;
    return 0;
}

} // namespace

int prepare_bitmap_uplink_port(Bitmap_uplink_port_range* bitmap) {
    return prepare(bitmap, board_uplink_ports() + 1);
}

int prepare_bitmap_pon_port(Bitmap_pon_port_range* bitmap) {
    return prepare(bitmap, board_pon_ports() + 1);
}

int get_parsed_uplink_port_range(const char* text, Bitmap_uplink_port_range* out) {
    return parse_ports(text, board_uplink_ports(), out);
}

int get_parsed_pon_port_range(const char* text, Bitmap_pon_port_range* out) {
    return parse_ports(text, board_pon_ports(), out);
}

int get_next_bitmap_uplink_port_ids(const Bitmap_uplink_port_range* bitmap, Bitmap_iterator* iterator,
                                    std::uint8_t* port) {
    return next_port(bitmap, iterator, port);
}

int get_next_bitmap_pon_port_ids(const Bitmap_pon_port_range* bitmap, Bitmap_iterator* iterator, std::uint8_t* port) {
    return next_port(bitmap, iterator, port);
}

int get_bitmap_uplink_port_ids_value(const Bitmap_uplink_port_range* bitmap, std::uint8_t port, std::uint8_t* value) {
    return port_value(bitmap, port, value);
}

int get_bitmap_pon_port_ids_value(const Bitmap_pon_port_range* bitmap, std::uint8_t port, std::uint8_t* value) {
    return port_value(bitmap, port, value);
}
