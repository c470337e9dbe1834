#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace xpon::cfgdb {

/// What a page in use holds.
enum class PageKind { damaged, branch, leaf, overflow };

struct PageFacts {
    PageKind kind;
    std::uint64_t pages; ///< that it takes: more than one for a value that is too large for a page
};

/// Looks at the page `number` as LMDB lays it out (format 1): its header, and that its entries fill the room between
/// its directory and its end. Damage there is seen by no reader, but by the next writer.
PageFacts check_page(std::span<const std::byte> page, std::uint64_t number);

} // namespace xpon::cfgdb
