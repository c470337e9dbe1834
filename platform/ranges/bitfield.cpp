#include "xpon/ranges/bitfield.h"

#include <algorithm>
#include <cerrno>

namespace {

std::uint32_t bytes_of(std::uint32_t size) {
    return size / 8 + (size % 8 != 0 ? 1 : 0);
}

} // namespace

int bitfield_set_bit(std::uint8_t* bits, std::uint32_t size, std::uint32_t bit) {
    if (bits == nullptr) {
        errno = EINVAL;
        return -1;
    }
    if (bit >= size) {
        errno = ERANGE;
        return -1;
    }
    bits[bit / 8] = static_cast<std::uint8_t>(bits[bit / 8] | 1U << bit % 8);
    return 0;
}

void bitfield_reset(std::uint8_t* bits, std::uint32_t size) {
    if (bits != nullptr) {
        std::fill_n(bits, bytes_of(size), std::uint8_t{0});
    }
}

void bitfield_invert(std::uint8_t* bits, std::uint32_t size) {
    if (bits == nullptr) {
        return;
    }
    for (std::uint32_t byte = 0; byte < bytes_of(size); ++byte) {
        bits[byte] = static_cast<std::uint8_t>(~bits[byte]);
    }
    if (size % 8 != 0) {
        bits[size / 8] = static_cast<std::uint8_t>(bits[size / 8] & ((1U << size % 8) - 1));
    }
}
