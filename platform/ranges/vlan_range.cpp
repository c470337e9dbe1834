#include "xpon/ranges/vlan_range.h"

#include "ranges/bitmap.hpp"

using namespace xpon;

int prepare_bitmap_vlan(Bitmap_vlan* bitmap) {
    return core::c_function([&] { ranges::prepare(bitmap, max_vlan_id + 1); });
}

int get_next_bitmap_vlan_ids(const Bitmap_vlan* bitmap, Bitmap_iterator* iterator, std::uint16_t* vlan) {
    return ranges::next_number(bitmap, iterator, vlan);
}
