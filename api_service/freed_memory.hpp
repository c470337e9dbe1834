#pragma once

#include <cstddef>

namespace xpon::api_service {

/// The tree of a JSON text takes up to this many times the text's size: 64 bytes and the allocator's own for each
/// number of one digit and its comma.
inline constexpr std::size_t tree_bytes_per_text_byte = 40;

/// Gives memory back to the system that `bytes` or more have just been freed of, when that is worth the time. Trees
/// and texts come in small pieces, which the allocator would keep.
void give_back_freed_memory(std::size_t bytes);

/// Two thirds of what the process has in memory after its start are tables of symbols and code that only the start goes
/// through, of thirty libraries. The kernel would keep them mapped. What is needed on comes back from its cache.
void give_back_pages_of_start();

} // namespace xpon::api_service
