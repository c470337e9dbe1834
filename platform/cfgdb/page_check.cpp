#include "cfgdb/page_check.hpp"

#include <algorithm>
#include <cstring>

namespace xpon::cfgdb {
namespace {

constexpr PageFacts damaged{PageKind::damaged, 0};

struct Header {
    std::uint64_t number;
    std::uint16_t unused;
    std::uint16_t flags;
    std::uint16_t lower; ///< the end of the directory; with `upper` the number of further pages of an overflow page
    std::uint16_t upper; ///< the beginning of the entries
};
static_assert(sizeof(Header) == 16);

constexpr std::uint16_t branch_flag = 0x01;
constexpr std::uint16_t leaf_flag = 0x02;
constexpr std::uint16_t overflow_flag = 0x04;

/// The beginning of an entry; key and value stand behind it.
struct Entry {
    std::uint16_t low; ///< of the size of the value, or of the number of the page below
    std::uint16_t high;
    std::uint16_t flags;
    std::uint16_t key_size;
};
static_assert(sizeof(Entry) == 8);

constexpr std::uint16_t big_value_flag = 0x01; ///< the value stands on overflow pages
constexpr std::size_t page_number_size = 8;

template <class Type>
Type read_at(std::span<const std::byte> page, std::size_t offset) {
    Type value;
    std::memcpy(&value, page.data() + offset, sizeof(value));
    return value;
}

/// The bytes that the entry takes, or 0 for none that LMDB writes here.
std::size_t size_of(const Entry& entry, bool is_leaf) {
    std::size_t value_size = 0;
    if (is_leaf) {
        if (entry.flags > big_value_flag) {
            return 0;
        }
        value_size = entry.flags == big_value_flag ? page_number_size : entry.low | std::size_t{entry.high} << 16U;
    }
    const auto size = sizeof(Entry) + entry.key_size + value_size;
    return size + size % 2;
}

bool is_filled(std::span<const std::byte> page, const Header& header) {
    if (header.lower < sizeof(Header) || header.lower % 2 != 0 || header.lower > header.upper ||
        header.upper > page.size()) {
        return false;
    }
    std::size_t filled = 0;
    std::size_t first = page.size();
    for (std::size_t at = sizeof(Header); at < header.lower; at += sizeof(std::uint16_t)) {
        const std::size_t offset = read_at<std::uint16_t>(page, at);
        if (offset < header.upper || offset % 2 != 0 || offset + sizeof(Entry) > page.size()) {
            return false;
        }
        const auto size = size_of(read_at<Entry>(page, offset), header.flags == leaf_flag);
        if (size == 0 || offset + size > page.size()) {
            return false;
        }
        first = std::min(first, offset);
        filled += size;
    }
    return first == header.upper && filled == page.size() - header.upper;
}

} // namespace

PageFacts check_page(std::span<const std::byte> page, std::uint64_t number) {
    const auto header = read_at<Header>(page, 0);
    if (header.number != number) {
        return damaged;
    }
    switch (header.flags) {
    case branch_flag:
        return is_filled(page, header) ? PageFacts{PageKind::branch, 1} : damaged;
    case leaf_flag:
        return is_filled(page, header) ? PageFacts{PageKind::leaf, 1} : damaged;
    case overflow_flag:
        return {PageKind::overflow, header.lower | std::uint64_t{header.upper} << 16U};
    default:
        return damaged;
    }
}

} // namespace xpon::cfgdb
