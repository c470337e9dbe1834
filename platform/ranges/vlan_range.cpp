#include "xpon/ranges/vlan_range.h"

#include "ranges/bitmap.hpp"

using namespace xpon::ranges;

int prepare_bitmap_vlan(Bitmap_vlan* bitmap) {
    return prepare(bitmap, max_vlan_id + 1);
}

int get_next_bitmap_vlan_ids(const Bitmap_vlan* bitmap, Bitmap_iterator* iterator, std::uint16_t* vlan) {
    if (vlan == nullptr) {
        return fail(EINVAL);
    }
    std::uint32_t bit = 0;
    const int status = next_bit(bitmap, iterator, 1, bit);
    *vlan = status == 0 ? static_cast<std::uint16_t>(bit) : std::uint16_t{0};
    return status;
}
