// What the custom layer's double leaves to the real libraries, in the second platform: a range is one front port, of
// other ports, ONTs and VLANs there are none, and nothing is converted or obfuscated.

#include "tests/service/fake_device.hpp"
#include "xpon/cfgdb/records/pon_ont.hpp"
#include "xpon/obfuscation/obfuscation.h"
#include "xpon/ranges/vlan_range.h"

#include <cstdlib>

int bitfield_set_bit(std::uint8_t*, std::uint32_t, std::uint32_t) {
    return -1;
}
void bitfield_reset(std::uint8_t*, std::uint32_t) {}
void bitfield_invert(std::uint8_t*, std::uint32_t) {}
int prepare_bitmap_pon_port(Bitmap_pon_port_range* bitmap) {
    *bitmap = {};
    return 0;
}
int prepare_bitmap_ont(Bitmap_ont_range* bitmap) {
    *bitmap = {};
    return 0;
}
int prepare_bitmap_vlan(Bitmap_vlan* bitmap) {
    *bitmap = {};
    return 0;
}
int get_parsed_uplink_port_range(const char* text, Bitmap_uplink_port_range* out) {
    *out = {.size = static_cast<std::uint32_t>(std::atoi(text)), .bits = {}};
    return 0;
}
int get_parsed_pon_port_range(const char*, Bitmap_pon_port_range*) {
    return -1;
}
int get_parsed_ont_range(const char*, const char*, Bitmap_ont_range*) {
    return -1;
}
int get_parsed_ont_range(const char*, Bitmap_ont_range*) {
    return -1;
}
int get_next_bitmap_uplink_port_ids(const Bitmap_uplink_port_range* bitmap, Bitmap_iterator* iterator,
                                    std::uint8_t* port) {
    *port = static_cast<std::uint8_t>(bitmap->size);
    return iterator->next++ == 0 ? 0 : 1;
}
int get_next_bitmap_pon_port_ids(const Bitmap_pon_port_range*, Bitmap_iterator*, std::uint8_t*) {
    return 1;
}
int get_next_bitmap_vlan_ids(const Bitmap_vlan*, Bitmap_iterator*, std::uint16_t*) {
    return 1;
}
int get_next_bitmap_ont_ids(const Bitmap_ont_range*, Bitmap_iterator*, std::uint8_t*, std::uint16_t*) {
    return 1;
}
int get_bitmap_uplink_port_ids_value(const Bitmap_uplink_port_range*, std::uint8_t, std::uint8_t* value) {
    *value = 1;
    return 0;
}

int custom_layer__init(zlog_category_s*) {
    xpon::test::fake_device() = xpon::test::filled_device();
    return 0;
}
int custom_layer__is_ont_configured_unsafe(const xpon::cfgdb::PonOnt* record) {
    return record->serial != 0 ? 1 : 0;
}
void unsigned_long_serial_to_bin(std::uint64_t, std::uint8_t*) {}
unsigned short get_ont_config_index(unsigned, unsigned) {
    return 0;
}
const char* ont_state_to_str(Ont_state) {
    return "";
}
const char* channel_state_to_str(Pon_channel_state) {
    return "";
}
const char* Pon_port_type_to_str(Pon_port_type) {
    return "";
}
size_t calculate_valid_size(const char*) {
    return 0;
}
int text_obfuscate(const char*, char*) {
    return -1;
}
int text_deobfuscate(const char*, char*) {
    return -1;
}
