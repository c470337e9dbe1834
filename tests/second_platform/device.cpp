// What the custom layer's double leaves to the real libraries, in the second platform: ranges of one number, converters
// and obfuscation.

#include "tests/service/fake_device.hpp"
#include "xpon/cfgdb/records/pon_ont.hpp"
#include "xpon/obfuscation/obfuscation.h"
#include "xpon/ranges/vlan_range.h"

#include <algorithm>
#include <cstdlib>

namespace {

template <class Bitmap>
int prepare(Bitmap* bitmap, std::uint32_t size) {
    *bitmap = {};
    bitmap->size = size;
    return 0;
}

template <class Bitmap>
int set_number(Bitmap* bitmap, std::uint32_t size, const char* text) {
    prepare(bitmap, size);
    return bitfield_set_bit(bitmap->bits, size, static_cast<std::uint32_t>(std::atoi(text)));
}

bool has(const std::uint8_t* bits, std::uint32_t bit) {
    return (bits[bit / 8] >> bit % 8 & 1U) != 0;
}

template <class Bitmap, class Number>
int next(const Bitmap* bitmap, Bitmap_iterator* iterator, std::uint32_t first, Number* number) {
    for (auto bit = std::max(iterator->next, first); bit < bitmap->size; ++bit) {
        if (has(bitmap->bits, bit)) {
            iterator->next = bit + 1;
            *number = static_cast<Number>(bit);
            return 0;
        }
    }
    return 1;
}

} // namespace

int bitfield_set_bit(std::uint8_t* bits, std::uint32_t size, std::uint32_t bit) {
    if (bit >= size) {
        return -1;
    }
    bits[bit / 8] = static_cast<std::uint8_t>(bits[bit / 8] | 1U << bit % 8);
    return 0;
}
void bitfield_reset(std::uint8_t* bits, std::uint32_t size) {
    std::fill_n(bits, (size + 7) / 8, std::uint8_t{0});
}
void bitfield_invert(std::uint8_t* bits, std::uint32_t size) {
    std::transform(bits, bits + (size + 7) / 8, bits, [](auto byte) { return static_cast<std::uint8_t>(~byte); });
}

int prepare_bitmap_pon_port(Bitmap_pon_port_range* bitmap) {
    return prepare(bitmap, max_pon_ports + 1);
}
int prepare_bitmap_ont(Bitmap_ont_range* bitmap) {
    return prepare(bitmap, max_configured_onts);
}
int prepare_bitmap_vlan(Bitmap_vlan* bitmap) {
    return prepare(bitmap, max_vlan_id + 1);
}
int get_parsed_uplink_port_range(const char* text, Bitmap_uplink_port_range* out) {
    return set_number(out, max_uplink_ports + 1, text);
}
int get_parsed_pon_port_range(const char* text, Bitmap_pon_port_range* out) {
    return set_number(out, max_pon_ports + 1, text);
}
int get_parsed_ont_range(const char* ports, const char* onts, Bitmap_ont_range* out) {
    prepare(out, max_configured_onts);
    const int position = (std::atoi(ports) - 1) * static_cast<int>(max_onts_per_pon_port) + std::atoi(onts) - 1;
    return bitfield_set_bit(out->bits, out->size, static_cast<std::uint32_t>(position));
}
int get_parsed_ont_range(const char* ports_and_onts, Bitmap_ont_range* out) {
    return get_parsed_ont_range(ports_and_onts, std::strchr(ports_and_onts, '/') + 1, out);
}
int get_next_bitmap_uplink_port_ids(const Bitmap_uplink_port_range* bitmap, Bitmap_iterator* iterator,
                                    std::uint8_t* port) {
    return next(bitmap, iterator, 1, port);
}
int get_next_bitmap_pon_port_ids(const Bitmap_pon_port_range* bitmap, Bitmap_iterator* iterator, std::uint8_t* port) {
    return next(bitmap, iterator, 1, port);
}
int get_next_bitmap_vlan_ids(const Bitmap_vlan* bitmap, Bitmap_iterator* iterator, std::uint16_t* vlan) {
    return next(bitmap, iterator, 1, vlan);
}
int get_next_bitmap_ont_ids(const Bitmap_ont_range* bitmap, Bitmap_iterator* iterator, std::uint8_t* port,
                            std::uint16_t* ont) {
    const int status = next(bitmap, iterator, 0, ont);
    *port = static_cast<std::uint8_t>(*ont / max_onts_per_pon_port);
    *ont = static_cast<std::uint16_t>(*ont % max_onts_per_pon_port);
    return status;
}
int get_bitmap_uplink_port_ids_value(const Bitmap_uplink_port_range* bitmap, std::uint8_t port, std::uint8_t* value) {
    *value = has(bitmap->bits, port) ? 1 : 0;
    return 0;
}

int custom_layer__init(zlog_category_s*) {
    xpon::test::fake_device() = xpon::test::filled_device();
    return 0;
}
int custom_layer__is_ont_configured_unsafe(const xpon::cfgdb::PonOnt* record) {
    return record->serial != 0 ? 1 : 0;
}
void unsigned_long_serial_to_bin(std::uint64_t, std::uint8_t* serial_bin) {
    std::fill_n(serial_bin, ont_serial_bin_size, std::uint8_t{1});
}
unsigned short get_ont_config_index(unsigned port, unsigned ont) {
    return static_cast<unsigned short>(port * max_onts_per_pon_port + ont);
}
const char* ont_state_to_str(Ont_state) {
    return "some state";
}
const char* channel_state_to_str(Pon_channel_state) {
    return "some state";
}
const char* Pon_port_type_to_str(Pon_port_type) {
    return "some type";
}

size_t calculate_valid_size(const char* text) {
    return std::strlen(text) + 2;
}
int text_obfuscate(const char* text, char* output) {
    *output = '~';
    std::copy_n(text, std::strlen(text) + 1, output + 1);
    return 0;
}
int text_deobfuscate(const char* text, char* output) {
    std::memmove(output, text + 1, std::strlen(text));
    return 0;
}
