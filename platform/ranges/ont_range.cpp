#include "xpon/ranges/ont_range.h"

#include "ranges/bitmap.hpp"
#include "ranges/board_ports.hpp"
#include "ranges/number_list.hpp"

#include <bitset>
#include <string_view>

namespace {

using namespace xpon::ranges;

constexpr std::string_view all_onts = "1-256";

int parse_onts(std::string_view ports, std::string_view onts, Bitmap_ont_range* out) {
    if (prepare_bitmap_ont(out) != 0) {
        return -1;
    }
    // First each side into a set of its own: a list that repeats itself must not cost the product of both.
    std::bitset<max_pon_ports> chosen_ports;
    std::bitset<max_onts_per_pon_port> chosen_onts;
    const int port_fault = for_each_number(ports, board_pon_ports(), [&](auto port) { chosen_ports.set(port - 1); });
    const int ont_fault = for_each_number(onts, max_onts_per_pon_port, [&](auto ont) { chosen_onts.set(ont - 1); });
    if (port_fault != 0 || ont_fault != 0) {
        return fail(port_fault == EINVAL || ont_fault == EINVAL ? EINVAL : ERANGE);
    }
    for (std::uint32_t bit = 0; bit < out->size; ++bit) {
        if (chosen_ports.test(bit / max_onts_per_pon_port) && chosen_onts.test(bit % max_onts_per_pon_port)) {
            bitfield_set_bit(out->bits, out->size, bit);
        }
    }
    return 0;
}

} // namespace

int prepare_bitmap_ont(Bitmap_ont_range* bitmap) {
    return prepare(bitmap, board_pon_ports() * max_onts_per_pon_port);
}

int get_next_bitmap_ont_ids(const Bitmap_ont_range* bitmap, Bitmap_iterator* iterator, std::uint8_t* port,
                            std::uint16_t* ont) {
    std::uint32_t bit = 0;
    if (port == nullptr || ont == nullptr) {
        return fail(EINVAL);
    }
    const int status = next_bit(bitmap, iterator, 0, bit);
    *port = status == 0 ? static_cast<std::uint8_t>(bit / max_onts_per_pon_port) : std::uint8_t{0};
    *ont = status == 0 ? static_cast<std::uint16_t>(bit % max_onts_per_pon_port) : std::uint16_t{0};
    return status;
}

int get_parsed_ont_range(const char* ports, const char* onts, Bitmap_ont_range* out) {
    if (ports == nullptr || onts == nullptr) {
        prepare_bitmap_ont(out);
        return fail(EINVAL);
    }
    return parse_onts(ports, onts, out);
}

int get_parsed_ont_range(const char* ports_and_onts, Bitmap_ont_range* out) {
    if (ports_and_onts == nullptr) {
        prepare_bitmap_ont(out);
        return fail(EINVAL);
    }
    const std::string_view text(ports_and_onts);
    const auto slash = text.find('/');
    return slash == std::string_view::npos ? parse_onts(text, all_onts, out)
                                           : parse_onts(text.substr(0, slash), text.substr(slash + 1), out);
}
