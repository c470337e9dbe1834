#include "xpon/ranges/bitfield.h"

#include "xpon/core/c_function.hpp"

#include <algorithm>
#include <cerrno>

using namespace xpon;

namespace {

std::uint32_t bytes_of(std::uint32_t size) {
    return size / 8 + (size % 8 != 0 ? 1 : 0);
}

} // namespace

int bitfield_set_bit(std::uint8_t* bits, std::uint32_t size, std::uint32_t bit) {
    return core::c_function([&] {
        if (bits == nullptr) {
            core::fail_with(EINVAL);
        }
        if (bit >= size) {
            core::fail_with(ERANGE);
        }
        bits[bit / 8] = static_cast<std::uint8_t>(bits[bit / 8] | 1U << bit % 8);
    });
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
